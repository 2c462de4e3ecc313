// SPDX-License-Identifier: MIT

#include <nlohmann/json.hpp>

#include "emulator/fault.h"
#include "emulator/route.h"
#include "tests/emulator/http_client.h"

namespace stowra_emulator {
namespace {

using nlohmann::json;

class ServicesTest : public ClientTest {
 protected:
  // A sanitizer makes the emulator slow.
  ServicesTest() { client_.set_read_timeout(std::chrono::minutes(1)); }

  json PostExtensions(const std::string& body, int status = 200) {
    SCOPED_TRACE(body.substr(0, 100));
    return json::parse(
        ResponseOf(client_.Post("/extensions", body, "application/json"), status).body);
  }

  // Whether an update is due for version `version` of `id`. The version is JSON text.
  bool UpdateIsDue(const std::string& id, const std::string& version) {
    const json answer =
        PostExtensions(R"({"extensions":[{"id":")" + id + R"(","version":)" + version + "}]}");
    return answer.at("extensions").at(0).at("update").get<bool>();
  }
};

TEST_F(ServicesTest, IndexListsEveryRouteAndFault) {
  const RawResponse index = Get("/");
  EXPECT_EQ(index.Header("Content-Type"), "text/plain; charset=utf-8");
  ASSERT_GE(Routes().size(), 4u);
  for (const Route& route : Routes()) {
    EXPECT_THAT(index.body, HasSubstr(std::string("  ") + route.method));
    EXPECT_THAT(index.body, HasSubstr(std::string(" ") + route.path + " "));
    EXPECT_THAT(index.body, HasSubstr(route.description));
  }
  ASSERT_EQ(Faults().size(), 8u);
  for (const FaultDescription& fault : Faults()) {
    EXPECT_THAT(index.body, HasSubstr(std::string("  ") + fault.usage + " "));
    EXPECT_THAT(index.body, HasSubstr(fault.description));
  }
}

TEST_F(ServicesTest, UserInfoDescribesTheSignedInUser) {
  EXPECT_EQ(GetJson("/user-info"), R"({
    "uid": "u-1001", "displayname": "Zoë Ångström", "email": "zoe@example.com",
    "vkr_id": "vkr-7f3a01", "locale": "sv-SE"})"_json);
}

TEST_F(ServicesTest, UserInfoPicksAnotherUser) {
  const json user = GetJson("/user-info?user=u-1002");
  EXPECT_EQ(user.at("uid"), "u-1002");
  EXPECT_EQ(user.at("displayname"), "山田 花子");
}

TEST_F(ServicesTest, UserInfoOmitsAbsentMembers) {
  EXPECT_EQ(GetJson("/user-info?user=u-1005"),
            json({{"uid", "u-1005"}, {"email", "nameless@example.com"}, {"vkr_id", ""}}));
}

TEST_F(ServicesTest, UnknownUserIsNotFound) {
  EXPECT_EQ(GetJson("/user-info?user=u-9999", 404), json({{"error", "no user 'u-9999'"}}));
  EXPECT_NE(GetError("/user-info?user=%FF%00%27", 404), "");
  EXPECT_NE(GetError("/user-info?user=", 404), "");
}

TEST_F(ServicesTest, UpdateHoldsVersionsMessageAndDataFiles) {
  const json update = GetJson("/update");
  EXPECT_EQ(update.size(), 3u);
  EXPECT_EQ(update.at("update"), R"({
    "current_version": "24.0.484", "expire_version": "22.0.0"})"_json);
  EXPECT_EQ(update.at("message"), R"({
    "id": 42, "max_shows": 3, "width": 640, "height": 480,
    "title": "What’s new: façades, naïve roofs and 屋根",
    "url": "https://www.stowra.example/messages/42?from=app&lang=en"})"_json);
  const json& files = update.at("datafiles");
  ASSERT_EQ(files.size(), 3u);
  EXPECT_EQ(files[0].at("filename"), "materials.dat");
  EXPECT_EQ(files[1], R"({"version": 4, "filename": "régions.dat",
    "url": "https://www.stowra.example/data/r%C3%A9gions-4.dat"})"_json);
  EXPECT_EQ(files[2].at("filename"), "content-types.dat");
}

TEST_F(ServicesTest, ExtensionsListsKnownIdsInRequestOrder) {
  const json answer = PostExtensions(R"({"extensions": [
      {"id": "gärten-窓", "version": "3.5", "name": "ignored"},
      {"id": "unheard-of", "version": "1.0"},
      {"id": "roof-tools", "version": "2.5"}]})");
  const json& extensions = answer.at("extensions");
  ASSERT_EQ(extensions.size(), 2u);
  EXPECT_EQ(extensions[0].at("id"), "gärten-窓");
  EXPECT_EQ(extensions[0].at("update"), true);
  EXPECT_EQ(extensions[1], R"({
    "id": "roof-tools", "version_uuid": "4f1d2c9e-8a53-4c1b-9d0e-2f6a7b8c9d01", "version": "2.5",
    "file_url": "https://extensions.stowra.example/roof-tools-2.5.zip",
    "update": false, "remote_kill": false, "enabled": 1})"_json);
}

TEST_F(ServicesTest, ExtensionsReportsWithdrawnAndDisabled) {
  const json answer =
      PostExtensions(R"({"extensions":[{"id":"old-exporter"},{"id":"sun-study"}]})");
  EXPECT_EQ(answer.at("extensions").at(0).at("remote_kill"), true);
  EXPECT_EQ(answer.at("extensions").at(0).at("enabled"), 0);
  EXPECT_EQ(answer.at("extensions").at(1).at("remote_kill"), false);
  EXPECT_EQ(answer.at("extensions").at(1).at("enabled"), 0);
}

TEST_F(ServicesTest, NoKnownIdGivesAnEmptyArray) {
  EXPECT_EQ(PostExtensions(R"({"extensions":[]})"), json({{"extensions", json::array()}}));
  EXPECT_EQ(PostExtensions(R"({"extensions":[{"id":""}]})"), json({{"extensions", json::array()}}));
}

TEST_F(ServicesTest, UpdateIsDueOnlyForALowerVersion) {
  for (const char* lower : {R"("2.4")", R"("1")", "2.4"}) {
    EXPECT_TRUE(UpdateIsDue("roof-tools", lower)) << lower;
  }
  for (const char* other : {R"("2.5")", R"("2.50")", R"("10.0")", "3"}) {
    EXPECT_FALSE(UpdateIsDue("roof-tools", other)) << other;
  }
  EXPECT_TRUE(UpdateIsDue("sun-study", R"("9.5")")) << "10.25 is more than 9.5";
}

TEST_F(ServicesTest, NoUpdateIsDueForAnUnreadableVersion) {
  for (const char* version : {R"("")", R"("1.0beta")", R"("1.2.3")", "null", "true", "[]"}) {
    EXPECT_FALSE(UpdateIsDue("roof-tools", version)) << version;
  }
  const json answer = PostExtensions(kExtensions);
  EXPECT_EQ(answer.at("extensions").at(0).at("update"), false);
}

TEST_F(ServicesTest, AnyOtherBodyIsABadRequest) {
  for (const char* body :
       {"", "not JSON", R"({"extensions":[)", "[]", "{}", R"("extensions")", R"({"extensions":{}})",
        R"({"extensions":[1]})", R"({"extensions":[{"version":"1.0"}]})",
        R"({"extensions":[{"id":7}]})", R"({"extensions":[{"id":"roof-tools"},{}]})",
        "{\"extensions\":[{\"id\":\"\xFF\"}]}"}) {
    EXPECT_TRUE(PostExtensions(body, 400).at("error").is_string()) << body;
  }
}

TEST_F(ServicesTest, SurvivesDeepNestingInARequest) {
  const std::string deep(200'000, '[');
  const std::string closed = deep + std::string(deep.size(), ']');
  PostExtensions(deep, 400);
  const json answer =
      PostExtensions(R"({"extensions":[{"id":"roof-tools","more":)" + closed + "}]}");
  EXPECT_EQ(answer.at("extensions").size(), 1u);
}

TEST_F(ServicesTest, RefusesWrongMethodAndNamesTheRightOnes) {
  const auto expect_refusal = [this](const std::string& request, const std::string& allowed) {
    SCOPED_TRACE(request);
    const RawResponse response =
        RawClient(emulator_.port()).Ask(request + " HTTP/1.1\r\nContent-Length: 2\r\n\r\n{}");
    EXPECT_EQ(response.status(), 405);
    EXPECT_EQ(response.Header("Allow"), allowed);
    EXPECT_TRUE(json::parse(response.body).contains("error"));
  };
  for (const std::string path : {"/", "/user-info", "/update"}) {
    expect_refusal("POST " + path, "GET, HEAD");
  }
  for (const std::string method : {"GET", "PUT", "PATCH", "DELETE", "OPTIONS"}) {
    expect_refusal(method + " /extensions", "POST");
  }
}

TEST_F(ServicesTest, UnknownRouteIsNotFound) {
  for (const char* target :
       {"/nope", "/user-info/", "/USER-INFO", "/user-info%0A", "//", "/%C3%A9"}) {
    EXPECT_NE(GetError(target, 404), "") << target;
  }
}

TEST_F(ServicesTest, HeadGivesOnlyTheLengthOfTheBody) {
  const httplib::Response head = ResponseOf(client_.Head("/user-info"));
  EXPECT_EQ(head.body, "");
  EXPECT_EQ(head.get_header_value("Content-Length"), std::to_string(Get("/user-info").body.size()));
}

TEST_F(ServicesTest, CompressesForClientThatAcceptsGzip) {
  const RawResponse plain = Get("/update");
  const httplib::Response packed =
      ResponseOf(client_.Get("/update", {{"Accept-Encoding", "gzip"}}));
  EXPECT_EQ(plain.Header("Content-Encoding"), "");
  EXPECT_EQ(packed.get_header_value("Content-Encoding"), "gzip");
  EXPECT_EQ(packed.body, plain.body);
}

}  // namespace
}  // namespace stowra_emulator

// SPDX-License-Identifier: MIT
#include <filesystem>
#include <fstream>

#include "tests/host/host_test.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

class ExtensionsTest : public InBothModes {};
IN_BOTH_MODES(ExtensionsTest);

constexpr char kReply[] = R"({"extensions":[
  {"id":"roof-tools","version_uuid":"u-1","version":"2.5","file_url":"http://e.example/r",
   "update":true,"remote_kill":false,"enabled":1},
  {"id":"窓","version_uuid":"u-2","version":"0.9","file_url":"","update":false,
   "remote_kill":true,"enabled":0}]})";

TEST_P(ExtensionsTest, PrintsStatusesAsTable) {
  const RawServer server(Replies(kReply));
  const Outcome outcome = RunInMode({"extensions", server.Url(), "--body", "-"}, "{}");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "extension   version  update  withdrawn  enabled  version uuid  url\n"
            "roof-tools  2.5      yes     no         yes      u-1           http://e.example/r\n"
            "窓          0.9      no      yes        no       u-2           \n");
  EXPECT_EQ(outcome.err, "");
}

TEST_P(ExtensionsTest, PrintsStatusesAsJson) {
  const RawServer server(Replies(kReply));
  const Outcome outcome = RunInMode({"extensions", server.Url(), "--body", "-", "--json"}, "{}");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "{\"extensions\":[{\"id\":\"roof-tools\",\"version_uuid\":\"u-1\",\"version\":2.5,"
            "\"file_url\":\"http://e.example/r\",\"update\":true,\"remote_kill\":false,"
            "\"enabled\":true},"
            "{\"id\":\"窓\",\"version_uuid\":\"u-2\",\"version\":0.9,\"file_url\":\"\","
            "\"update\":false,\"remote_kill\":true,\"enabled\":false}]}\n");
}

TEST_P(ExtensionsTest, SendsStandardInputUnchanged) {
  const RawServer server(Replies(kReply));
  const std::string body = "{\"extensions\":[\n{\"id\":\"gärten\"}]}\n";
  EXPECT_EQ(RunInMode({"extensions", server.Url(), "--body", "-"}, body).status, 0);
  ASSERT_EQ(server.requests().size(), 1U);
  const RawRequest request = server.requests()[0];
  EXPECT_EQ(request.method, "POST");
  EXPECT_EQ(request.body, body);
  EXPECT_EQ(request.Header("Content-Type"), "application/json");
}

TEST_P(ExtensionsTest, SendsFileUnchanged) {
  const RawServer server(Replies(kReply));
  const std::string body = "{\"extensions\":[]}" + std::string(300000, ' ') + std::string(1, '\0');
  const TemporaryFolder folder;
  const std::filesystem::path file = folder.path() / "body.json";
  std::ofstream(file, std::ios::binary) << body;
  EXPECT_EQ(RunInMode({"extensions", server.Url(), "--body", file.string()}).status, 0);
  ASSERT_EQ(server.requests().size(), 1U);
  EXPECT_EQ(server.requests()[0].body, body);
}

TEST_P(ExtensionsTest, ReadsStatusFromTheEmulator) {
  const EmulatorProcess emulator;
  const Outcome outcome = RunInMode(
      {"extensions", emulator.url() + "/extensions", "--body", "-", "--notifications", "--json"},
      R"({"extensions":[{"id":"roof-tools","version":"1.0"}]})");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, testing::StartsWith(R"({"extensions":[{"id":"roof-tools",)"));
  EXPECT_THAT(outcome.out, testing::HasSubstr(R"("update":true)"));
  const bool async = *GetParam() != '\0';
  EXPECT_EQ(outcome.err, async ? "notification ExtensionStoreAsyncStatusSucceeded\n" : "");
}

TEST_P(ExtensionsTest, ReportsFailure) {
  const EmulatorProcess emulator;
  const std::string url = emulator.url() + "/extensions?fault=status:500";
  const Outcome outcome = RunInMode({"extensions", url, "--body", "-", "--notifications"}, "{}");
  EXPECT_EQ(outcome.status, 4);
  EXPECT_EQ(outcome.out, "");
  const bool async = *GetParam() != '\0';
  EXPECT_EQ(outcome.err,
            std::string(async ? "notification ExtensionStoreAsyncStatusFailed\n" : "") +
                "stowra: " + url + ": HTTP status 500: this status is a fault on purpose\n");
}

TEST_P(ExtensionsTest, RefusesResponseWithoutStatus) {
  for (const char* body : {"", "{\"extensions\":", "[]", "{}", R"({"extensions":[]})",
                           R"({"extensions":[1,"x"]})", R"({"extensions":{"id":"x"}})"}) {
    const RawServer server(Replies(body));
    const Outcome outcome = RunInMode({"extensions", server.Url(), "--body", "-"}, "{}");
    EXPECT_EQ(outcome.status, 5) << body;
    EXPECT_EQ(outcome.out, "") << body;
    EXPECT_EQ(outcome.err, "stowra: " + server.Url() +
                               ": the response is not usable: it contains no extension's "
                               "status\n")
        << body;
  }
}

TEST(ExtensionsBodyTest, RefusesUnreadableBodyFile) {
  const std::string url = "http://127.0.0.1:1/";
  const std::string folder = std::filesystem::temp_directory_path().string();
  const struct {
    std::string file;
    std::string reason;
  } cases[] = {{"/nowhere/body.json", "No such file or directory"}, {folder, "Is a directory"}};
  for (const auto& [file, reason] : cases) {
    const Outcome outcome = RunStowra({"extensions", url, "--body", file});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "stowra: --body " + file + ": " + reason + "\n");
  }
}

TEST(ExtensionsBodyTest, RefusesBodyThatIsNotUtf8) {
  const Outcome outcome =
      RunStowra({"extensions", "http://127.0.0.1:1/", "--body", "-"}, "{\"id\":\"\xFF\"}");
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, "stowra: --body -: the text is not UTF-8\n");
}

}  // namespace
}  // namespace stowra_test

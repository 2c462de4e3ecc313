// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <chrono>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "emulator/form_fields.h"
#include "emulator/route.h"
#include "tests/emulator/content_fixture.h"
#include "tests/emulator/raw_client.h"

namespace stowra_emulator {
namespace {

using nlohmann::json;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;
using testing::SizeIs;
using testing::StartsWith;

const httplib::Headers kBrowser = {{"Accept", "text/html,application/xhtml+xml,*/*;q=0.8"}};

TEST(FormFieldsTest, DecodesFields) {
  EXPECT_THAT(ParseForm("a=1&b=x+y%26z&c&=d&a=2&"),
              ElementsAre(Pair("a", "2"), Pair("b", "x y&z"), Pair("c", "")));
  EXPECT_THAT(ParseForm(""), ElementsAre());
}

class ConsoleTest : public ContentTest {
 protected:
  XmlElement FrontPage(const std::string& path = "/") {
    const httplib::Result result = client_.Get(path, kBrowser);
    EXPECT_EQ(result->get_header_value("Content-Type"), "text/html; charset=utf-8");
    return ParseXml(result->body);
  }

  json PostFaults(const std::string& form, int status = 200) {
    const httplib::Result result =
        client_.Post("/-/faults", form, "application/x-www-form-urlencoded");
    EXPECT_EQ(result->status, status) << form << '\n' << result->body;
    return json::parse(result->body);
  }
};

TEST_F(ConsoleTest, FrontPageShowsRoutesFaultsAndUploads) {
  ASSERT_EQ(client_
                .Post("/upload", {{"name", "Blue <Stool>", "", ""},
                                  {"subjectId", "m42", "", ""},
                                  {"subjectClass", "entity", "", ""},
                                  {"binary", "x", "stool.bin", "text/plain"}})
                ->status,
            201);
  PostFaults("rule=/update=status:503@25");
  for (const char* path : {"/", "/-/"}) {
    const XmlElement page = FrontPage(path);
    std::vector<std::string> codes;
    for (const XmlElement* code : page.Descendants("code")) codes.push_back(code->text);
    for (const Route& route : Routes()) {
      EXPECT_THAT(codes, testing::Contains(std::string(route.method) + " " + route.path));
    }
    for (const FaultDescription& fault : Faults()) {
      EXPECT_THAT(codes, testing::Contains(fault.usage));
    }
    EXPECT_THAT(codes, testing::Contains("/update=status:503@25"));
    ASSERT_THAT(page.Descendants("img"), SizeIs(1));
    EXPECT_EQ(page.Descendants("img")[0]->Attribute("alt"), "Picture of Blue <Stool>");
  }
}

TEST_F(ConsoleTest, EveryExampleOfARouteWorks) {
  for (const Route& route : Routes()) {
    if (*route.example != '\0') Get(route.example);
  }
}

TEST_F(ConsoleTest, PagesLoadNothingFromElsewhere) {
  const httplib::Result page = client_.Get("/", kBrowser);
  EXPECT_THAT(page->get_header_value("Content-Security-Policy"),
              AllOf(HasSubstr("default-src 'none'"), HasSubstr("script-src 'self'")));
  EXPECT_THAT(page->body, Not(HasSubstr("http://")));
  EXPECT_THAT(page->body, Not(HasSubstr("https://")));
  for (const char* target : {"/", "/user-info", "/thumbnail?mid=m-1001", "/nope"}) {
    EXPECT_EQ(client_.Get(target)->get_header_value("X-Content-Type-Options"), "nosniff");
  }
}

TEST_F(ConsoleTest, ErrorsArePagesForBrowsersOnly) {
  for (const auto& [target, status] :
       {std::pair("/nope", 404), std::pair("/model?mid=m-9999", 404), std::pair("/model", 400),
        std::pair("/update?fault=status:503", 503), std::pair("/extensions", 405)}) {
    const httplib::Result page = client_.Get(target, kBrowser);
    EXPECT_EQ(page->status, status) << target;
    EXPECT_EQ(page->get_header_value("Content-Type"), "text/html; charset=utf-8");
    EXPECT_THAT(ParseXml(page->body).Descendants("h1")[0]->text, HasSubstr(std::to_string(status)));
    GetError(target, status);
  }
}

TEST_F(ConsoleTest, FaultsAreAddedSwitchedAndRemoved) {
  EXPECT_EQ(PostFaults("route=%2Fupdate&kind=status&value=503&percent=100&action=add"),
            json({{"faults", {{{"id", 1}, {"rule", "/update=status:503"}, {"on", true}}}}}));
  Get("/update", 503);
  PostFaults("id=1&action=off");
  Get("/update", 200);
  PostFaults("id=1&action=on");
  Get("/update", 503);
  EXPECT_EQ(PostFaults("id=1&action=remove"), json({{"faults", json::array()}}));
  Get("/update", 200);
  EXPECT_EQ(json::parse(Get("/-/faults").body), json({{"faults", json::array()}}));
}

TEST_F(ConsoleTest, BrowserReturnsToTheFrontPage) {
  const httplib::Result result =
      client_.Post("/-/faults", kBrowser, "rule=*=drip:0", "application/x-www-form-urlencoded");
  EXPECT_EQ(result->status, 303);
  EXPECT_EQ(result->get_header_value("Location"), "/-/");
  const XmlElement page = FrontPage();
  const auto switches = page.Descendants("button");
  ASSERT_GE(switches.size(), 2u);
  EXPECT_EQ(switches[1]->Attribute("role"), "switch");
  EXPECT_EQ(switches[1]->Attribute("aria-checked"), "true");
}

TEST_F(ConsoleTest, RefusesBadFaultsAndOtherSites) {
  EXPECT_THAT(PostFaults("rule=/nope=reset", 400).at("error").get<std::string>(),
              HasSubstr("/update"));
  EXPECT_THAT(PostFaults("rule=/update=nope", 400).at("error").get<std::string>(),
              HasSubstr("status:CODE"));
  for (const char* form : {"", "id=x&action=on", "action=off", "id=1&action=explode"}) {
    PostFaults(form, 400);
  }
  const httplib::Result other = client_.Post("/-/faults", {{"Origin", "http://elsewhere.example"}},
                                             "rule=*=reset", "application/x-www-form-urlencoded");
  EXPECT_EQ(other->status, 403);
  const httplib::Result own = client_.Post("/-/faults", {{"Origin", emulator_.url()}},
                                           "rule=*=drip:0", "application/x-www-form-urlencoded");
  EXPECT_EQ(own->status, 200);
}

TEST_F(ConsoleTest, FaultsSpareTheConsole) {
  PostFaults("rule=*=status:503");
  Get("/update", 503);
  Get("/-/faults", 200);
  for (const char* path : {"/", "/-/"}) EXPECT_EQ(client_.Get(path, kBrowser)->status, 200);
}

// The next event, without the blank line.
json NextEvent(RawClient& events) {
  events.ReadUntil("\ndata: ");
  return json::parse(events.ReadUntil("\n\n"));
}

TEST_F(ConsoleTest, EventsShowBothSidesOfEachRequest) {
  Get("/update");
  RawClient events(emulator_.port());
  events.Send(GetRequest("/-/events"));
  EXPECT_THAT(events.ReadUntil("\r\n\r\n"), HasSubstr("Content-Type: text/event-stream\r\n"));
  EXPECT_EQ(NextEvent(events).at("target"), "/update");

  const std::string body = R"({"extensions":[{"id":"roof-tools"}]})";
  client_.Post("/extensions?fault=drip:0", body, "application/json");
  const json event = NextEvent(events);
  EXPECT_EQ(event.at("method"), "POST");
  EXPECT_EQ(event.at("status"), 200);
  EXPECT_EQ(event.at("fault"), "drip:0");
  EXPECT_THAT(event.at("requestHead").get<std::string>(),
              StartsWith("POST /extensions?fault=drip:0 HTTP/1.1\r\n"));
  EXPECT_EQ(event.at("requestBody"), body);
  EXPECT_THAT(event.at("responseHead").get<std::string>(), StartsWith("HTTP/1.1 200 OK\r\n"));
  EXPECT_THAT(event.at("responseBody").get<std::string>(), HasSubstr("roof-tools"));
}

TEST_F(ConsoleTest, EventsLeaveOutTheConsoleAndBoundWhatTheyShow) {
  Get("/");
  Get("/-/faults");
  client_.Post("/extensions", std::string(100000, ' '), "application/json");
  RawClient events(emulator_.port());
  events.Send(GetRequest("/-/events"));
  const json event = NextEvent(events);
  EXPECT_EQ(event.at("target"), "/extensions");
  EXPECT_EQ(event.at("requestBody").get<std::string>().size(), 8192u);
}

TEST_F(ConsoleTest, EventsGoOnAfterTheLastOneSeen) {
  RawClient first(emulator_.port());
  first.Send(GetRequest("/-/events"));
  for (const char* target : {"/update", "/user-info", "/search"}) {
    Get(target);
    EXPECT_EQ(NextEvent(first).at("target"),
              target);  // they are noted when they have been answered
  }
  RawClient events(emulator_.port());
  events.Send("GET /-/events HTTP/1.1\r\nHost: h\r\nLast-Event-ID: 2\r\n\r\n");
  EXPECT_EQ(NextEvent(events).at("target"), "/search");
  RawClient later(emulator_.port());
  later.Send("GET /-/events HTTP/1.1\r\nHost: h\r\nLast-Event-ID: 99\r\n\r\n");
  EXPECT_EQ(NextEvent(later).at("target"), "/update") << "the id is of another run";
}

TEST(ConsoleStopTest, StopsSoonWhileEventsAreRead) {
  auto emulator = std::make_unique<Emulator>();
  RawClient events(emulator->port());
  events.Send(GetRequest("/-/events"));
  events.ReadUntil(":\n\n");
  const auto start = steady_clock::now();
  emulator.reset();
  EXPECT_LT(steady_clock::now() - start, milliseconds(1500));
}

}  // namespace
}  // namespace stowra_emulator

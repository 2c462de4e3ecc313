// SPDX-License-Identifier: MIT

#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

#include "emulator/console/journal.h"
#include "emulator/form_fields.h"
#include "emulator/route.h"
#include "tests/emulator/http_client.h"

namespace stowra_emulator {
namespace {

using nlohmann::json;
using std::chrono::minutes;

const httplib::Headers kBrowser = {{"Accept", "text/html,application/xhtml+xml,*/*;q=0.8"}};

TEST(FormFieldsTest, DecodesFields) {
  EXPECT_THAT(ParseForm("a=1&b=x+y%26z&c&=d&a=2&"),
              ElementsAre(Pair("a", "2"), Pair("b", "x y&z"), Pair("c", "")));
  EXPECT_THAT(ParseForm(""), ElementsAre());
}

class ConsoleTest : public ClientTest {
 protected:
  // A page as a browser gets it.
  httplib::Response Browse(const std::string& path, int status = 200) {
    SCOPED_TRACE(path);
    const httplib::Response page = ResponseOf(client_.Get(path, kBrowser), status);
    EXPECT_EQ(page.get_header_value("Content-Type"), "text/html; charset=utf-8");
    return page;
  }

  httplib::Result PostForm(const std::string& form, const httplib::Headers& headers = {}) {
    return client_.Post("/-/faults", headers, form, "application/x-www-form-urlencoded");
  }

  json PostFaults(const std::string& form, int status = 200) {
    SCOPED_TRACE(form);
    return json::parse(ResponseOf(PostForm(form), status).body);
  }

  RawClient Events(const std::string& fields = "") {
    RawClient events(emulator_.port());
    events.Send("GET /-/events HTTP/1.1\r\nHost: h\r\n" + fields + "\r\n");
    return events;
  }
};

TEST_F(ConsoleTest, FrontPageShowsRoutesFaultsAndUploads) {
  ResponseOf(client_.Post("/upload", FormOf("Blue <Stool>", "x")), 201);
  PostFaults("rule=/update=status:503@25");
  for (const char* path : {"/", "/-/"}) {
    const XmlElement page = ParseXml(Browse(path).body);
    std::vector<std::string> codes;
    for (const XmlElement* code : page.Descendants("code")) codes.push_back(code->text);
    for (const Route& route : Routes()) {
      EXPECT_THAT(codes, Contains(std::string(route.method) + " " + route.path));
    }
    for (const FaultDescription& fault : Faults()) {
      EXPECT_THAT(codes, Contains(fault.usage));
    }
    EXPECT_THAT(codes, Contains("/update=status:503@25"));
    EXPECT_EQ(page.Descendant("img").Attribute("alt"), "Picture of Blue <Stool>");
  }
}

TEST_F(ConsoleTest, EveryExampleOfARouteWorks) {
  for (const Route& route : Routes()) {
    if (*route.example != '\0') Get(route.example);
  }
}

TEST_F(ConsoleTest, PagesLoadNothingFromElsewhere) {
  const httplib::Response page = Browse("/");
  EXPECT_THAT(page.get_header_value("Content-Security-Policy"),
              AllOf(HasSubstr("default-src 'none'"), HasSubstr("script-src 'self'")));
  EXPECT_THAT(page.body, AllOf(Not(HasSubstr("http://")), Not(HasSubstr("https://"))));
  for (const char* target : {"/", "/user-info", "/thumbnail?mid=m-1001", "/nope"}) {
    const httplib::Result result = client_.Get(target);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->get_header_value("X-Content-Type-Options"), "nosniff");
  }
}

TEST_F(ConsoleTest, ErrorsArePagesForBrowsersOnly) {
  for (const auto& [target, status] :
       {std::pair("/nope", 404), std::pair("/model?mid=m-9999", 404), std::pair("/model", 400),
        std::pair("/update?fault=status:503", 503), std::pair("/extensions", 405)}) {
    const XmlElement page = ParseXml(Browse(target, status).body);
    EXPECT_THAT(page.Descendant("h1").text, HasSubstr(std::to_string(status)));
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
  EXPECT_EQ(GetJson("/-/faults"), json({{"faults", json::array()}}));
}

TEST_F(ConsoleTest, BrowserReturnsToTheFrontPage) {
  const httplib::Response response = ResponseOf(PostForm("rule=*=drip:0", kBrowser), 303);
  EXPECT_EQ(response.get_header_value("Location"), "/-/");
  const XmlElement page = ParseXml(Browse("/").body);
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
  ResponseOf(PostForm("rule=*=reset", {{"Origin", "http://elsewhere.example"}}), 403);
  ResponseOf(PostForm("rule=*=drip:0", {{"Origin", emulator_.url()}}), 200);
}

TEST_F(ConsoleTest, FaultsSpareTheConsole) {
  PostFaults("rule=*=status:503");
  Get("/update", 503);
  Get("/-/faults", 200);
  for (const char* path : {"/", "/-/"}) Browse(path);
}

// The next event, without the blank line.
json NextEvent(RawClient& events) {
  events.ReadUntil("\ndata: ");
  return json::parse(events.ReadUntil("\n\n"));
}

TEST_F(ConsoleTest, EventsShowBothSidesOfEachRequest) {
  Get("/update");
  RawClient events = Events();
  EXPECT_THAT(events.ReadUntil("\r\n\r\n"), HasSubstr("Content-Type: text/event-stream\r\n"));
  EXPECT_EQ(NextEvent(events).at("target"), "/update");

  client_.Post("/extensions?fault=drip:0", kExtensions, "application/json");
  const json event = NextEvent(events);
  EXPECT_EQ(event.at("method"), "POST");
  EXPECT_EQ(event.at("status"), 200);
  EXPECT_EQ(event.at("fault"), "drip:0");
  EXPECT_THAT(event.at("requestHead").get<std::string>(),
              StartsWith("POST /extensions?fault=drip:0 HTTP/1.1\r\n"));
  EXPECT_EQ(event.at("requestBody"), kExtensions);
  EXPECT_THAT(event.at("responseHead").get<std::string>(), StartsWith("HTTP/1.1 200 OK\r\n"));
  EXPECT_THAT(event.at("responseBody").get<std::string>(), HasSubstr("roof-tools"));
}

TEST_F(ConsoleTest, EventsLeaveOutTheConsoleAndBoundWhatTheyShow) {
  Get("/");
  Get("/-/faults");
  client_.Post("/extensions", std::string(100000, ' '), "application/json");
  RawClient events = Events();
  const json event = NextEvent(events);
  EXPECT_EQ(event.at("target"), "/extensions");
  EXPECT_EQ(event.at("requestBody").get<std::string>().size(), 8192u);
}

TEST_F(ConsoleTest, EventsGoOnAfterTheLastOneSeen) {
  RawClient first = Events();
  for (const char* target : {"/update", "/user-info", "/search"}) {
    Get(target);
    EXPECT_EQ(NextEvent(first).at("target"), target);  // noted when it has been answered
  }
  RawClient events = Events("Last-Event-ID: 2\r\n");
  EXPECT_EQ(NextEvent(events).at("target"), "/search");
  RawClient later = Events("Last-Event-ID: 99\r\n");
  EXPECT_EQ(NextEvent(later).at("target"), "/update") << "the id is of another run";
}

TEST(ConsoleStopTest, StopsSoonWhileEventsAreRead) {
  auto emulator = std::make_unique<Emulator>();
  RawClient events(emulator->port());
  events.Send(GetRequest("/-/events"));
  events.ReadUntil(":\n\n");
  EXPECT_LT(TimeOf([&emulator] { emulator.reset(); }), kPatience);
}

JournalEntry EntryFor(const std::string& target) {
  JournalEntry entry;
  entry.target = target;
  return entry;
}

TEST(JournalTest, HandsOutEntriesAfterAnId) {
  Journal journal;
  for (const char* target : {"/a", "/b", "/c"}) journal.Add(EntryFor(target));
  const Journal::Entries all = journal.WaitForEntries(0, minutes(1));
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[0]->target, "/a");
  EXPECT_EQ(all[2]->id, journal.last_id());
  EXPECT_EQ(journal.WaitForEntries(all[1]->id, minutes(1)).size(), 1u);
  EXPECT_EQ(journal.WaitForEntries(all[2]->id, milliseconds(1)).size(), 0u);
}

TEST(JournalTest, KeepsTheLastTwoHundred) {
  Journal journal;
  for (int i = 0; i < 250; ++i) journal.Add(EntryFor(std::to_string(i)));
  const Journal::Entries all = journal.WaitForEntries(0, minutes(1));
  ASSERT_EQ(all.size(), 200u);
  EXPECT_EQ(all.front()->target, "50");
  EXPECT_EQ(all.back()->target, "249");
}

TEST(JournalTest, WaitEndsWithTheNextEntryOrTheClose) {
  Journal journal;
  std::thread adder([&journal] { journal.Add(EntryFor("/a")); });
  EXPECT_EQ(journal.WaitForEntries(0, minutes(1)).size(), 1u);
  adder.join();
  std::thread closer([&journal] { journal.Close(); });
  EXPECT_EQ(journal.WaitForEntries(1, minutes(1)).size(), 0u);
  closer.join();
  EXPECT_TRUE(journal.is_closed());
}

}  // namespace
}  // namespace stowra_emulator

// SPDX-License-Identifier: MIT
#include <atomic>

#include "host/counting_source.h"
#include "tests/host/content_replies.h"
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

int CountOf(const std::string& part, const std::string& text) {
  return static_cast<int>(stowra::CountText(text, part));
}

RawServer::Handler Serves(const FeedText& feed) { return Always(Response(200, Feed(feed))); }

// Serves the pages /1, /2 and so on. Each has one model and a link to the next page. The last page
// links to `last_next` unless that is empty.
RawServer::Handler Pages(int pages, const std::string& last_next) {
  return [pages, last_next](const RawRequest& request, RawConnection& connection) {
    const int page = std::stoi(request.target.substr(1));
    const std::string next = page < pages ? std::to_string(page + 1) : last_next;
    FeedText feed = {{ModelEntry("m" + std::to_string(page), "Chair")}, pages, page, 1};
    if (!next.empty()) feed.next = "http://" + request.Header("Host") + "/" + next;
    connection.Write(page <= pages ? Response(200, Feed(feed)) : Response(404, "gone"));
  };
}

TEST(SearchTest, PrintsResultsAsTable) {
  const RawServer server(
      Serves({{ModelEntry("m1", "Oak & Chair"), CollectionEntry("c1", "Chairs")}, 100, 1, 2}));
  EXPECT_THAT(RunStowra({"search", server.Url()}),
              Prints("title  chair\n"
                     "found  results 1 to 2 of 100\n"
                     "\n"
                     "title        author  kind        format  download\n"
                     "Oak & Chair  Zoë     model       k2      http://f/m1.kmz?rtyp=k2\n"
                     "Chairs       Zoë     collection          \n"));
}

TEST(SearchTest, PrintsEveryFieldAsJson) {
  FeedText feed = {{CollectionEntry("c1", "Chairs"), ModelEntry("m1", "Chair")}, 30, 13};
  feed.next = "http://q/next?a=1&b=2";
  feed.previous = "http://q/previous";
  const RawServer server(Serves(feed));
  EXPECT_THAT(
      RunStowra({"search", server.Url(), "--json", "--max-qmf-version", "7"}),
      Prints(R"({"title":"chair","total_results":30,"start_index":13,"items_per_page":12,)"
             R"("self_url":"http://q/self","previous_url":"http://q/previous",)"
             R"("next_url":"http://q/next?a=1&b=2","html_url":"http://w/all","items":[)"
             R"({"kind":"collection","id":"c1","title":"Chairs","summary":"All of it",)"
             R"("author_name":"Zoë","author_uri":"http://a/?uq=u-1","author_id":"u-1",)"
             R"("html_url":"http://w/c1","user_query_url":"http://q/c1",)"
             R"("thumbnail_url":"http://t/c1?rtyp=st","download_url":"","download_format":"",)"
             R"("collection_feed_url":"http://c/?x=1&q=is:downloadable",)"
             R"("dynamic_component":true,"classified_component":true},)"
             R"({"kind":"model","id":"m1","title":"Chair","summary":"",)"
             R"("author_name":"Zoë","author_uri":"http://a/?uq=u-1","author_id":"u-1",)"
             R"("html_url":"http://w/m1","user_query_url":"",)"
             R"("thumbnail_url":"http://t/m1?rtyp=st","download_url":"http://f/m1.qmf?rtyp=s7",)"
             R"("download_format":"qmf","collection_feed_url":"",)"
             R"("dynamic_component":false,"classified_component":false}]})"
             "\n"));
}

TEST(SearchTest, AcceptsQmfFilesUpToGivenVersion) {
  const RawServer server(Serves({{ModelEntry("m1", "Chair")}}));
  const std::vector<std::string> command = {"search", server.Url()};
  const std::string option = "--max-qmf-version";
  EXPECT_THAT(RunStowra(command).out, HasSubstr("k2      http://f/m1.kmz"));
  EXPECT_THAT(RunStowra(Joined(command, {option, "6"})).out, HasSubstr("k2      http://f/m1.kmz"));
  EXPECT_THAT(RunStowra(Joined(command, {option, "7"})).out, HasSubstr("qmf     http://f/m1.qmf"));
}

TEST(SearchTest, SucceedsWithoutResults) {
  const RawServer server(Serves({}));
  EXPECT_THAT(RunStowra({"search", server.Url()}), Prints("title  chair\nfound  0 results\n"));
  EXPECT_THAT(RunStowra({"search", server.Url(), "--json"}).out, EndsWith("\"items\":[]}\n"));
}

TEST(SearchTest, TellsWhichResultsItFound) {
  constexpr int kMost = 2147483647;
  const std::vector<std::string> entries = {ModelEntry("m1", "Chair"),
                                            "<entry><id>broken</id></entry>"};
  const std::pair<FeedText, TextMatcher> rows[] = {
      {{entries, 2}, StartsWith("title  chair\nfound  results 1 to 2 of 2, usable 1\n")},
      {{{}, kMost, kMost, kMost},
       HasSubstr("results 2147483647 to 2147483647 of 2147483647, usable 0\n")},
      {{{}, kMost, -kMost, -kMost}, "title  chair\nfound  none here of 2147483647\n"},
      {{{}, 106, 5000}, "title  chair\nfound  none here of 106\n"},
  };
  for (const auto& [feed, found] : rows) {
    const RawServer server(Serves(feed));
    EXPECT_THAT(RunStowra({"search", server.Url()}), Prints(found));
  }
}

TEST(SearchTest, ShowsRepeatedEntryOfOnePage) {
  const RawServer server(Serves({{ModelEntry("m1", "Chair"), ModelEntry("m1", "Chair")}, 2}));
  EXPECT_EQ(CountOf("http://f/m1.kmz", RunStowra({"search", server.Url()}).out), 2);
}

TEST(SearchTest, FetchesOnePageByDefault) {
  const RawServer server(Pages(3, ""));
  EXPECT_THAT(RunStowra({"search", server.Url("/1")}), Prints(HasSubstr("results 1 to 1 of 3\n")));
  EXPECT_EQ(server.requests().size(), 1U);
}

TEST(SearchAllTest, FollowsNextLinksToTheEnd) {
  const RawServer server(Pages(3, ""));
  const Outcome outcome = RunStowra({"search", server.Url("/1"), "--all"});
  EXPECT_THAT(outcome, Prints(HasSubstr("results 1 to 3 of 3\n")));
  for (const char* model : {"http://f/m1.kmz", "http://f/m2.kmz", "http://f/m3.kmz"}) {
    EXPECT_EQ(CountOf(model, outcome.out), 1) << model;
  }
  EXPECT_EQ(server.requests().size(), 3U);
}

TEST(SearchAllTest, StopsAtUrlThatWasFetchedBefore) {
  for (const std::string target : {"1", "2", "3"}) {
    const RawServer server(Pages(3, target));
    EXPECT_THAT(RunStowra({"search", server.Url("/1"), "--all"}),
                Ends(0, HasSubstr("results 1 to 3 of 3\n"),
                     Message("warning: " + server.Url("/" + target),
                             "not followed, because the pages repeat")));
    EXPECT_EQ(server.requests().size(), 3U);
  }
}

TEST(SearchAllTest, StopsAfter100PagesWithoutNewResult) {
  std::atomic<int> page = 0;
  const RawServer server([&page](const RawRequest& request, RawConnection& connection) {
    FeedText feed = {{ModelEntry("m1", "Chair")}, 1};
    feed.next = "http://" + request.Header("Host") + "/" + std::to_string(++page);
    connection.Write(Response(200, Feed(feed)));
  });
  const Outcome outcome = RunStowra({"search", server.Url("/0"), "--all"});
  EXPECT_THAT(outcome, Ends(0, _, HasSubstr("/101: not followed, because the pages repeat\n")));
  EXPECT_EQ(server.requests().size(), 101U);
  EXPECT_EQ(CountOf("http://f/m1.kmz", outcome.out), 1);
}

TEST(SearchAllTest, ContinuesAfterPageWithoutUsableEntry) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    FeedText feed = {{ModelEntry("m2", "Chair")}, 2, 2, 1};
    if (request.target == "/") {
      feed = {{"<entry/>"}, 2, 1, 1, "http://" + request.Header("Host") + "/2"};
    }
    connection.Write(Response(200, Feed(feed)));
  });
  EXPECT_THAT(RunStowra({"search", server.Url(), "--all"}).out,
              AllOf(HasSubstr("results 1 to 2 of 2, usable 1\n"), HasSubstr("http://f/m2.kmz")));
}

TEST(SearchAllTest, PrintsPagesBeforeFailedPage) {
  const RawServer server(Pages(2, "3"));
  const std::vector<std::string> command = {"search", server.Url("/1"), "--all"};
  const std::string failure = Message(server.Url("/3"), "HTTP status 404");
  const Outcome outcome = RunStowra(command);
  EXPECT_THAT(outcome, Ends(4,
                            AllOf(HasSubstr("results 1 to 2 of 2\n"), HasSubstr("http://f/m1.kmz"),
                                  HasSubstr("http://f/m2.kmz")),
                            failure));
  EXPECT_EQ(RunProgram("/bin/sh", AfterCommand("exec 2>&1", command)).out, outcome.out + failure);
}

TEST(SearchAllTest, LinksToFailedPageInJson) {
  const RawServer server(Pages(1, "2"));
  EXPECT_THAT(RunStowra({"search", server.Url("/1"), "--all", "--json"}),
              Ends(4,
                   AllOf(HasSubstr("\"next_url\":\"" + server.Url("/2") + "\""),
                         HasSubstr("\"id\":\"m1\"")),
                   _));
}

TEST(SearchTest, FindsModelsOfTheEmulator) {
  const EmulatorProcess emulator;
  const std::string url = emulator.url() + "/search?count=";
  EXPECT_THAT(RunStowra({"search", url + "30", "--all", "--max-qmf-version", "99"}),
              Prints(AllOf(HasSubstr("results 1 to 106 of 106\n"), HasSubstr("木の椅子"),
                           HasSubstr("  collection  "))));
  EXPECT_THAT(RunStowra({"search", url + "0"}),
              Fails(4, MatchesRegex("stowra: " + emulator.url() +
                                    "/search\\?count=0: HTTP status 400: [^\n]+\n")));
}

TEST(SearchTest, FindsWordsWithUrlBase) {
  const RawServer server(Serves({}));
  const std::string base = server.Url("/api");
  EXPECT_EQ(RunStowra({"search", "oak", "chair", "--url-base", base}).status, 0);
  EXPECT_EQ(RunStowra({"search", "--url-base", base}).status, 0);
  EXPECT_EQ(RunStowra({"search", "/find?q=x", "--url-base", base}).status, 0);
  EXPECT_EQ(RunStowra({"search", server.Url("/there"), "--url-base", "http://h"}).status, 0);
  std::vector<std::string> targets;
  for (const RawRequest& request : server.requests()) targets.push_back(request.target);
  EXPECT_THAT(targets,
              ElementsAre("/api/search?q=oak%20chair", "/api/search", "/find?q=x", "/there"));
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include <atomic>

#include "tests/host/content_replies.h"
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

int CountOf(const std::string& part, const std::string& text) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

// Serves the pages /1, /2 and so on. Each has one model and a link to the next page.
class PagesServer {
 public:
  // The last page links to `last_next` unless that is empty.
  PagesServer(int pages, const std::string& last_next)
      : server_([pages, last_next](const RawRequest& request, RawConnection& connection) {
          const std::string base = "http://" + request.Header("Host") + "/";
          const int page = std::stoi(request.target.substr(1));
          FeedText feed;
          feed.total = pages;
          feed.start = page;
          feed.per_page = 1;
          feed.entries = {ModelEntry("m" + std::to_string(page), "Chair")};
          if (page < pages) feed.next = base + std::to_string(page + 1);
          if (page == pages && !last_next.empty()) feed.next = base + last_next;
          connection.Write(page <= pages ? Response(200, Feed(feed)) : Response(404, "gone"));
        }) {}

  const RawServer& server() const { return server_; }

 private:
  RawServer server_;
};

TEST(SearchTest, PrintsResultsAsTable) {
  FeedText feed;
  feed.total = 100;
  feed.per_page = 2;
  feed.entries = {ModelEntry("m1", "Oak & Chair"), CollectionEntry("c1", "Chairs")};
  const RawServer server(Always(Response(200, Feed(feed))));
  const Outcome outcome = RunStowra({"search", server.Url()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "title  chair\n"
            "found  results 1 to 2 of 100\n"
            "\n"
            "title        author  kind        format  download\n"
            "Oak & Chair  Zoë     model       k2      http://f/m1.kmz?rtyp=k2\n"
            "Chairs       Zoë     collection          \n");
  EXPECT_EQ(outcome.err, "");
}

TEST(SearchTest, PrintsEveryFieldAsJson) {
  FeedText feed;
  feed.total = 30;
  feed.start = 13;
  feed.entries = {CollectionEntry("c1", "Chairs"), ModelEntry("m1", "Chair")};
  feed.next = "http://q/next?a=1&b=2";
  feed.previous = "http://q/previous";
  const RawServer server(Always(Response(200, Feed(feed))));
  const Outcome outcome = RunStowra({"search", server.Url(), "--json", "--max-qmf-version", "7"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            R"({"title":"chair","total_results":30,"start_index":13,"items_per_page":12,)"
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
            "\n");
}

TEST(SearchTest, AcceptsQmfFilesUpToGivenVersion) {
  FeedText feed;
  feed.entries = {ModelEntry("m1", "Chair")};
  const RawServer server(Always(Response(200, Feed(feed))));
  EXPECT_THAT(RunStowra({"search", server.Url()}).out, HasSubstr("k2      http://f/m1.kmz"));
  EXPECT_THAT(RunStowra({"search", server.Url(), "--max-qmf-version", "6"}).out,
              HasSubstr("k2      http://f/m1.kmz"));
  EXPECT_THAT(RunStowra({"search", server.Url(), "--max-qmf-version", "7"}).out,
              HasSubstr("qmf     http://f/m1.qmf"));
}

TEST(SearchTest, CountsUsableEntries) {
  FeedText feed;
  feed.total = 2;
  feed.entries = {ModelEntry("m1", "Chair"), "<entry><id>broken</id></entry>"};
  const RawServer server(Always(Response(200, Feed(feed))));
  const Outcome outcome = RunStowra({"search", server.Url()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("found  results 1 to 2 of 2, usable 1\n"));
}

TEST(SearchTest, SucceedsWithoutResults) {
  const RawServer server(Always(Response(200, Feed({}))));
  const Outcome outcome = RunStowra({"search", server.Url()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "title  chair\nfound  0 results\n");
  EXPECT_THAT(RunStowra({"search", server.Url(), "--json"}).out, EndsWith("\"items\":[]}\n"));
}

TEST(SearchTest, AcceptsExtremeCounts) {
  FeedText feed;
  feed.total = 2147483647;
  feed.start = 2147483647;
  feed.per_page = 2147483647;
  const RawServer far(Always(Response(200, Feed(feed))));
  EXPECT_THAT(RunStowra({"search", far.Url()}).out,
              HasSubstr("results 2147483647 to 2147483647 of 2147483647, usable 0"));
  feed.start = -2147483647;
  feed.per_page = -2147483647;
  const RawServer negative(Always(Response(200, Feed(feed))));
  EXPECT_THAT(RunStowra({"search", negative.Url()}).out,
              HasSubstr("found  none here of 2147483647\n"));
}

TEST(SearchTest, ReportsTotalOnPageBeyondTheLast) {
  FeedText feed;
  feed.total = 106;
  feed.start = 5000;
  const RawServer server(Always(Response(200, Feed(feed))));
  const Outcome outcome = RunStowra({"search", server.Url()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "title  chair\nfound  none here of 106\n");
}

TEST(SearchTest, ShowsRepeatedEntryOfOnePage) {
  FeedText feed;
  feed.total = 2;
  feed.entries = {ModelEntry("m1", "Chair"), ModelEntry("m1", "Chair")};
  const RawServer server(Always(Response(200, Feed(feed))));
  EXPECT_EQ(CountOf("http://f/m1.kmz", RunStowra({"search", server.Url()}).out), 2);
}

TEST(SearchTest, EscapesControlCharactersInTitle) {
  FeedText feed;
  feed.entries = {ModelEntry("m1", "A&#x9B;31mB&#x85;C\nD")};
  std::string text = Feed(feed);
  const RawServer server(Always(Response(200, text)));
  const Outcome outcome = RunStowra({"search", server.Url()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out.find("\xC2\x9B"), std::string::npos);
  EXPECT_EQ(outcome.out.find("\xC2\x85"), std::string::npos);
  EXPECT_EQ(CountOf("\n", outcome.out), 5) << outcome.out;
}

TEST(SearchTest, FetchesOnePageByDefault) {
  const PagesServer pages(3, "");
  const Outcome outcome = RunStowra({"search", pages.server().Url("/1")});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("results 1 to 1 of 3\n"));
  EXPECT_EQ(pages.server().requests().size(), 1U);
}

TEST(SearchAllTest, FollowsNextLinksToTheEnd) {
  const PagesServer pages(3, "");
  const Outcome outcome = RunStowra({"search", pages.server().Url("/1"), "--all"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out, HasSubstr("results 1 to 3 of 3\n"));
  for (const char* model : {"http://f/m1.kmz", "http://f/m2.kmz", "http://f/m3.kmz"}) {
    EXPECT_EQ(CountOf(model, outcome.out), 1) << model;
  }
  EXPECT_EQ(pages.server().requests().size(), 3U);
}

TEST(SearchAllTest, StopsAtUrlThatWasFetchedBefore) {
  for (const std::string target : {"1", "2", "3"}) {
    const PagesServer pages(3, target);
    const Outcome outcome = RunStowra({"search", pages.server().Url("/1"), "--all"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "stowra: warning: " + pages.server().Url("/" + target) +
                               ": not followed, because the pages repeat\n");
    EXPECT_THAT(outcome.out, HasSubstr("results 1 to 3 of 3\n"));
    EXPECT_EQ(pages.server().requests().size(), 3U);
  }
}

TEST(SearchAllTest, StopsAfter100PagesWithoutNewResult) {
  std::atomic<int> page = 0;
  const RawServer server([&page](const RawRequest& request, RawConnection& connection) {
    FeedText feed;
    feed.total = 1;
    feed.entries = {ModelEntry("m1", "Chair")};
    feed.next = "http://" + request.Header("Host") + "/" + std::to_string(++page);
    connection.Write(Response(200, Feed(feed)));
  });
  const Outcome outcome = RunStowra({"search", server.Url("/0"), "--all"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.err, HasSubstr("/101: not followed, because the pages repeat\n"));
  EXPECT_EQ(server.requests().size(), 101U);
  EXPECT_EQ(CountOf("http://f/m1.kmz", outcome.out), 1);
}

TEST(SearchAllTest, ContinuesAfterPageWithoutUsableEntry) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    FeedText feed;
    feed.total = 2;
    feed.per_page = 1;
    const bool is_first = request.target == "/";
    if (is_first) feed.next = "http://" + request.Header("Host") + "/2";
    if (!is_first) feed.start = 2;
    feed.entries = {is_first ? "<entry/>" : ModelEntry("m2", "Chair")};
    connection.Write(Response(200, Feed(feed)));
  });
  const Outcome outcome = RunStowra({"search", server.Url(), "--all"});
  EXPECT_THAT(outcome.out, HasSubstr("results 1 to 2 of 2, usable 1\n"));
  EXPECT_THAT(outcome.out, HasSubstr("http://f/m2.kmz"));
}

TEST(SearchAllTest, PrintsPagesBeforeFailedPage) {
  const PagesServer pages(2, "3");
  const std::vector<std::string> command = {"search", pages.server().Url("/1"), "--all"};
  const Outcome outcome = RunStowra(command);
  EXPECT_EQ(outcome.status, 4);
  EXPECT_THAT(outcome.out, HasSubstr("results 1 to 2 of 2\n"));
  EXPECT_THAT(outcome.out, HasSubstr("http://f/m1.kmz"));
  EXPECT_THAT(outcome.out, HasSubstr("http://f/m2.kmz"));
  const std::string failure = "stowra: " + pages.server().Url("/3") + ": HTTP status 404\n";
  EXPECT_EQ(outcome.err, failure);

  Start start;
  start.arguments = {"-c", "exec \"$0\" \"$@\" 2>&1", kStowra};
  start.arguments.insert(start.arguments.end(), command.begin(), command.end());
  EXPECT_EQ(RunProgram("/bin/sh", start).out, outcome.out + failure);
}

TEST(SearchAllTest, LinksToFailedPageInJson) {
  const PagesServer pages(1, "2");
  const Outcome outcome = RunStowra({"search", pages.server().Url("/1"), "--all", "--json"});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_THAT(outcome.out, HasSubstr("\"next_url\":\"" + pages.server().Url("/2") + "\""));
  EXPECT_THAT(outcome.out, HasSubstr("\"id\":\"m1\""));
}

TEST(SearchTest, ReportsUnusableFeed) {
  FeedText uncounted;
  std::string no_count = Feed(uncounted);
  no_count.replace(no_count.find("<o:startIndex>1</o:startIndex>"), 30, "");
  for (const std::string& body : {std::string("<html/>"), std::string("{}"), no_count}) {
    const RawServer server(Always(Response(200, body)));
    const Outcome outcome = RunStowra({"search", server.Url()});
    EXPECT_EQ(outcome.status, 5);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "stowra: " + server.Url() +
                               ": the response is not usable: it is not an Atom feed with title, "
                               "totalResults, startIndex and itemsPerPage\n");
  }
}

TEST(SearchTest, PrintsTransfersWhenVerbose) {
  const std::string body = Feed({});
  const RawServer server(Always(Response(200, body)));
  const Outcome outcome = RunStowra({"search", server.Url(), "--verbose"});
  EXPECT_THAT(outcome.err, EndsWith(": HTTP status 200, bytes sent 0, received " +
                                    std::to_string(body.size()) + "\n"));
  const Outcome failed = RunStowra({"search", "http://h:99999999", "-v"});
  EXPECT_THAT(failed.err,
              testing::MatchesRegex("\\* transfer 1, [0-9.]+ ms: GET http://h:99999999: [^\n]*\n"
                                    "stowra: [^\n]*\n"));
}

TEST(SearchTest, FindsModelsOfTheEmulator) {
  const EmulatorProcess emulator;
  const std::string url = emulator.url() + "/search?count=30";
  const Outcome outcome = RunStowra({"search", url, "--all", "--max-qmf-version", "99"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out, HasSubstr("results 1 to 106 of 106\n"));
  EXPECT_THAT(outcome.out, HasSubstr("木の椅子"));
  EXPECT_THAT(outcome.out, HasSubstr("  collection  "));
  const Outcome refused = RunStowra({"search", emulator.url() + "/search?count=0"});
  EXPECT_EQ(refused.status, 4);
  EXPECT_THAT(refused.err, testing::MatchesRegex("stowra: " + emulator.url() +
                                                 "/search\\?count=0: HTTP status 400: [^\n]+\n"));
}

TEST(SearchTest, FindsWordsWithUrlBase) {
  const RawServer server(Always(Response(200, Feed({}))));
  EXPECT_EQ(RunStowra({"search", "oak", "chair", "--url-base", server.Url("/api")}).status, 0);
  EXPECT_EQ(RunStowra({"search", "--url-base", server.Url("/api")}).status, 0);
  EXPECT_EQ(RunStowra({"search", "/find?q=x", "--url-base", server.Url("/api")}).status, 0);
  EXPECT_EQ(RunStowra({"search", server.Url("/there"), "--url-base", "http://h"}).status, 0);
  const auto requests = server.requests();
  ASSERT_EQ(requests.size(), 4U);
  EXPECT_EQ(requests[0].target, "/api/search?q=oak%20chair");
  EXPECT_EQ(requests[1].target, "/api/search");
  EXPECT_EQ(requests[2].target, "/find?q=x");
  EXPECT_EQ(requests[3].target, "/there");
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
// ContentQuery::QueryFeed over a connection.

#include <gtest/gtest.h>

#include <string>

#include "common_stowraapi/content/content_query.h"
#include "tests/content/feed_text.h"
#include "tests/content/fields.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::ContentQuery;

std::string Page(const std::string& title, const std::string& links = "") {
  const Parts feed = Feed().With("title", Tag("title", title)).With("links", links);
  return feed.With("entries", Model().text()).text();
}

class QueryFeedTest : public testing::Test {
 protected:
  QueryFeedTest() { EXPECT_TRUE(LoadText(Page("old"), query)); }

  bool QueryFeed(const RawServer& server, const std::string& target = "/") {
    return query.QueryFeed(Text(server.Url(target)));
  }

  // The old results, and nothing else.
  void ExpectOld() {
    EXPECT_EQ(Fields(query), std::make_tuple(40, 13, 6, "", "", "", "", "old", 1U));
  }

  ContentQuery query;
};

TEST_F(QueryFeedTest, GetsTheFeed) {
  const RawServer server(Always(Response(200, Page("chairs filetype:qmf"))));
  EXPECT_TRUE(QueryFeed(server, "/search?q=chairs"));
  EXPECT_EQ(query.title_, "chairs");
  EXPECT_EQ(query.items_.size(), 1U);
  ASSERT_EQ(server.requests().size(), 1U);
  EXPECT_EQ(server.requests()[0].method, "GET");
  EXPECT_EQ(server.requests()[0].target, "/search?q=chairs");
}

TEST_F(QueryFeedTest, ABodyThatIsNoFeedEmptiesTheQueryWhateverItsStatus) {
  for (const int status : {200, 404}) {
    for (const char* const body : {"", "not found", "<html/>"}) {
      ASSERT_TRUE(LoadText(Page("old"), query));
      const RawServer server(Always(Response(status, body)));
      EXPECT_FALSE(QueryFeed(server)) << status << body;
      ExpectEmpty(query);
    }
  }
}

TEST_F(QueryFeedTest, ARedirectIsFollowed) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.target == "/from" ? Response(302, Page("moved"), "Location: /to\r\n")
                                               : Response(200, Page("chairs")));
  });
  EXPECT_TRUE(QueryFeed(server, "/from"));
  EXPECT_EQ(query.title_, "chairs");
}

TEST_F(QueryFeedTest, ATransferThatFailsKeepsTheResults) {
  std::string cut = Response(200, Page("chairs"));
  cut.pop_back();
  for (const std::string& sent : {cut, std::string()}) {
    const RawServer server(AlwaysThenClose(sent));
    EXPECT_FALSE(QueryFeed(server)) << sent;
    ExpectOld();
  }
  for (const char* const url : {"", "no url", "ftp://127.0.0.1/", "file:///etc/passwd"}) {
    EXPECT_FALSE(query.QueryFeed(url)) << url;
    ExpectOld();
  }
}

// Turns to the next page and back. Each page replaces the last.
TEST_F(QueryFeedTest, PagesAreTurnedByTheirLinks) {
  const char* const atom = "application/atom+xml";
  const RawServer server([&](const RawRequest& request, RawConnection& connection) {
    const std::string self = server.Url();
    connection.Write(Response(200, request.target == "/1"
                                       ? Page("one", Link("next", self + "2", atom))
                                       : Page("two", Link("previous", self + "1", atom))));
  });
  ASSERT_TRUE(QueryFeed(server, "/1"));
  EXPECT_TRUE(query.NextValid());
  EXPECT_FALSE(query.BackValid());
  ASSERT_TRUE(query.QueryFeed(query.next_url_));
  EXPECT_EQ(query.title_, "two");
  EXPECT_EQ(query.items_.size(), 1U);
  EXPECT_FALSE(query.NextValid());
  EXPECT_TRUE(query.BackValid());
  ASSERT_TRUE(query.QueryFeed(query.previous_url_));
  EXPECT_EQ(query.title_, "one");
}

}  // namespace
}  // namespace stowra_test

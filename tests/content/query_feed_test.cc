// SPDX-License-Identifier: MIT
// ContentQuery::QueryFeed over a connection.

#include <gtest/gtest.h>

#include <string>

#include "common_stowraapi/content/content_query.h"
#include "tests/content/feed_text.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::ContentQuery;

std::string Page(const std::string& title, const std::string& links = "") {
  return Feed()
      .With("title", "<title>" + title + "</title>")
      .With("links", links)
      .With("entries", Model().text())
      .text();
}

class QueryFeedTest : public testing::Test {
 protected:
  QueryFeedTest() { EXPECT_TRUE(LoadText(Page("old"), query)); }

  bool QueryFeed(const RawServer& server, const std::string& target = "/") {
    return query.QueryFeed(Text(server.Url(target)));
  }

  // The old results, and nothing else.
  void ExpectOld() {
    EXPECT_EQ(query.title_, "old");
    EXPECT_EQ(query.items_.size(), 1U);
    EXPECT_EQ(query.total_results_, 40);
  }

  void ExpectEmpty() {
    EXPECT_EQ(query.title_, "");
    EXPECT_TRUE(query.items_.empty());
    EXPECT_EQ(query.total_results_, 0);
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

TEST_F(QueryFeedTest, AnyStatusWillDo) {
  for (const int status : {200, 201, 203, 300, 400, 403, 404, 410, 500, 503}) {
    query.Clear();
    const RawServer server(Always(Response(status, Page("chairs"))));
    EXPECT_TRUE(QueryFeed(server)) << status;
    EXPECT_EQ(query.title_, "chairs") << status;
  }
}

TEST_F(QueryFeedTest, ABodyThatIsNoFeedEmptiesTheQueryWhateverItsStatus) {
  for (const int status : {200, 404}) {
    for (const char* const body : {"", "not found", "<html/>"}) {
      ASSERT_TRUE(LoadText(Page("old"), query));
      const RawServer server(Always(Response(status, body)));
      EXPECT_FALSE(QueryFeed(server)) << status << body;
      ExpectEmpty();
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

TEST_F(QueryFeedTest, AnEmptyUrlKeepsTheResults) {
  EXPECT_FALSE(query.QueryFeed(""));
  ExpectOld();
}

TEST_F(QueryFeedTest, ATransferThatFailsKeepsTheResults) {
  {
    const std::string cut = Response(200, Page("chairs"));
    const RawServer server(AlwaysThenClose(cut.substr(0, cut.size() - 1)));
    EXPECT_FALSE(QueryFeed(server));
    ExpectOld();
  }
  const RawServer mute([](const RawRequest&, RawConnection& connection) { connection.Close(); });
  EXPECT_FALSE(QueryFeed(mute));
  ExpectOld();
  for (const char* const url : {"no url", "ftp://127.0.0.1/", "file:///etc/passwd"}) {
    EXPECT_FALSE(query.QueryFeed(url)) << url;
    ExpectOld();
  }
}

// Turns to the next page and back. Each page replaces the last.
TEST_F(QueryFeedTest, PagesAreTurnedByTheirLinks) {
  const char* const atom = "application/atom+xml";
  const RawServer server([&](const RawRequest& request, RawConnection& connection) {
    const std::string self = server.Url();
    if (request.target == "/1") {
      connection.Write(Response(200, Page("one", Link("next", self + "2", atom))));
    } else {
      connection.Write(Response(200, Page("two", Link("previous", self + "1", atom))));
    }
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

// SPDX-License-Identifier: MIT
// ContentQuery::QueryFeed and UploadConfig::SynchronousQuery over a connection.

#include <gtest/gtest.h>

#include <string>

#include "tests/content/feed_text.h"
#include "tests/content/fields.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::UploadConfig;

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

TEST_F(QueryFeedTest, ATransferThatFailsKeepsTheResults) {
  const auto expect_old = [this] {
    EXPECT_EQ(Fields(query), std::make_tuple(40, 13, 6, "", "", "", "", "old", 1U));
  };
  std::string cut = Response(200, Page("chairs"));
  cut.pop_back();
  for (const std::string& sent : {cut, std::string()}) {
    const RawServer server(AlwaysThenClose(sent));
    EXPECT_FALSE(QueryFeed(server)) << sent;
    expect_old();
  }
  for (const char* const url : {"", "no url", "ftp://127.0.0.1/", "file:///etc/passwd"}) {
    EXPECT_FALSE(query.QueryFeed(url)) << url;
    expect_old();
  }
}

// Turns to the next page and back. Each page replaces the last.
TEST_F(QueryFeedTest, PagesAreTurnedByTheirLinks) {
  const RawServer server([&](const RawRequest& request, RawConnection& connection) {
    const std::string self = server.Url();
    connection.Write(Response(200, request.target == "/1"
                                       ? Page("one", Link("next", self + "2", kAtom))
                                       : Page("two", Link("previous", self + "1", kAtom))));
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

constexpr char kGood[] =
    "<upload><successUrl>s</successUrl><failureUrl>f</failureUrl><files><file>"
    "<uploadUrl>u</uploadUrl><type>t</type></file></files></upload>";

class UploadQueryTest : public testing::Test {
 protected:
  // Holds the results of an earlier query.
  UploadQueryTest() { Fill(); }

  void Fill() {
    Bytes bytes(kGood);
    config.Clear();
    EXPECT_TRUE(config.ParseResponse(bytes.data(), bytes.size()));
  }

  void ExpectEmpty() { EXPECT_EQ(Fields(config), std::make_tuple(config.url_, "", "", 0U)); }

  UploadConfig config;
};

TEST_F(UploadQueryTest, GetsTheConfiguration) {
  const RawServer server(Always(Response(200, kGood)));
  config.Init(Text(server.Url("/config?x=y")));
  EXPECT_TRUE(config.SynchronousQuery());
  EXPECT_EQ(Fields(config), std::make_tuple(Text(server.Url("/config?x=y")), "s", "f", 1U));
  ASSERT_EQ(server.requests().size(), 1U);
  EXPECT_EQ(server.requests()[0].method, "GET");
  EXPECT_EQ(server.requests()[0].target, "/config?x=y");
}

TEST_F(UploadQueryTest, AppendsWithoutInit) {
  const RawServer server(Always(Response(200, kGood)));
  config.url_ = Text(server.Url());
  EXPECT_TRUE(config.SynchronousQuery());
  EXPECT_EQ(config.files_.size(), 2U);
}

TEST_F(UploadQueryTest, ATransferThatFailsClears) {
  const std::string cut = Response(200, kGood);
  const RawServer server(AlwaysThenClose(cut.substr(0, cut.size() - 1)));
  config.url_ = Text(server.Url());
  EXPECT_FALSE(config.SynchronousQuery());
  ExpectEmpty();
  for (const char* const url : {"", "no url", "file:///etc/passwd"}) {
    Fill();
    config.url_ = url;
    EXPECT_FALSE(config.SynchronousQuery()) << url;
    ExpectEmpty();
    EXPECT_EQ(config.url_, url);
  }
}

TEST_F(UploadQueryTest, MayBeRepeatedAfterAFailure) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(Response(200, request.connection == 0 ? "busy" : kGood));
    connection.Close();
  });
  config.url_ = Text(server.Url());
  EXPECT_FALSE(config.SynchronousQuery());
  EXPECT_TRUE(config.SynchronousQuery());
  EXPECT_EQ(config.files_.size(), 1U);
}

}  // namespace
}  // namespace stowra_test

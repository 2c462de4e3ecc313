// SPDX-License-Identifier: MIT
// ContentQuery::QueryFeed and what it asks of its transport.

#include <climits>
#include <new>
#include <string>
#include <utility>

#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/platform/internet_data.h"
#include "tests/substitute/content_fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::stowraapiclient::ContentQuery;

XmlElement Feed() {
  return Parent("a:feed", {Leaf("a:title", "chairs"), Leaf("o:totalResults", "0"),
                           Leaf("o:startIndex", "1"), Leaf("o:itemsPerPage", "12")});
}

class ContentQueryFeedTest : public ContentTest {
 protected:
  // A query that holds the feed "old".
  ContentQueryFeedTest() {
    XmlElement feed = Feed();
    feed.children[0].text = "old";
    ScriptDocument(feed);
    EXPECT_TRUE(query.Load(nullptr, 0));
    TakeEffects();
  }

  ContentQuery query;
};

TEST_F(ContentQueryFeedTest, DownloadsThenLoadsWhileTheTransportExists) {
  ScriptTransfer(Reply(200, "body"));
  ScriptDocument(Feed());
  EXPECT_TRUE(query.QueryFeed("http://a/?q=chairs"));
  EXPECT_EQ(query.title_, "chairs");
  EXPECT_EQ(TakeText(),
            "http://a/?q=chairs: constructed | http://a/?q=chairs: Download | "
            "Get_IXMLInput 4 bytes: body | +a:feed | .a:title | !+a:link | #o:totalResults | "
            "#o:startIndex | #o:itemsPerPage | !+a:entry | -a:feed | End_IXMLInput | "
            "reader deleted | http://a/?q=chairs: deleted");
}

TEST_F(ContentQueryFeedTest, AnyStatusOfAResponseIsLoaded) {
  for (const int status :
       {-200, 0, 100, 199, 200, 201, 203, 204, 300, 302, 400, 403, 404, 410, 500, 503}) {
    query.Clear();
    ScriptTransfer(Reply(status, "body"));
    ScriptDocument(Feed());
    EXPECT_TRUE(query.QueryFeed("http://a/")) << status;
    EXPECT_EQ(query.title_, "chairs") << status;
  }
}

TEST_F(ContentQueryFeedTest, AFailedDownloadKeepsTheOldResultsWhateverItsStatus) {
  for (const int status : {0, 200, 404}) {
    ScriptTransfer({false, status, "body", {}});
    EXPECT_FALSE(query.QueryFeed("http://a/"));
    EXPECT_EQ(TakeText(), "http://a/: constructed | http://a/: Download | http://a/: deleted");
    EXPECT_EQ(query.title_, "old") << status;
  }
}

TEST_F(ContentQueryFeedTest, AnEmptyUrlMakesNoTransport) {
  EXPECT_FALSE(query.QueryFeed(""));
  EXPECT_EQ(TakeText(), "");
  EXPECT_EQ(query.title_, "old");
}

TEST_F(ContentQueryFeedTest, AnUnreadableBodyEmptiesTheQueryAndTheTransportIsDeleted) {
  ScriptTransfer(Reply(200, "no"));
  ScriptUnreadableDocument();
  EXPECT_FALSE(query.QueryFeed("http://a/"));
  EXPECT_EQ(TakeText(),
            "http://a/: constructed | http://a/: Download | Get_IXMLInput 2 bytes: no | "
            "http://a/: deleted");
  EXPECT_EQ(query.title_, "");
}

TEST_F(ContentQueryFeedTest, TheBodyMayBeEmptyAndHoldZeroBytes) {
  for (const std::string& body : {std::string(), std::string("a\0b", 3)}) {
    ScriptTransfer(Reply(200, body));
    ScriptUnreadableDocument();
    EXPECT_FALSE(query.QueryFeed("http://a/"));
    EXPECT_THAT(TakeEffects(), testing::Contains("Get_IXMLInput " + std::to_string(body.size()) +
                                                 " bytes: " + body));
    EXPECT_EQ(query.title_, "");
  }
}

// A reader's length is an int. Cut to 32 bits, the last one would be that of the body.
TEST_F(ContentQueryFeedTest, LengthIsPassedWhereItFitsAnInt) {
  const std::pair<unsigned long, const char*> lengths[] = {
      {INT_MAX, "Get_IXMLInput 2147483647 bytes: "},
      {INT_MAX + 1UL, "Get_IXMLInput -1 bytes: "},
      {(1UL << 32) + 4, "Get_IXMLInput -1 bytes: "}};
  for (const auto& [length, effect] : lengths) {
    ScriptTransfer({true, 200, "body", {}, length});
    ScriptUnreadableDocument();
    EXPECT_FALSE(query.QueryFeed("http://a/"));
    EXPECT_THAT(TakeEffects(), testing::Contains(effect)) << length;
  }
}

// Pages are turned so: what is cleared is also what names the next page.
TEST_F(ContentQueryFeedTest, TheUrlMayBeTheQuerysOwn) {
  for (ovrant::utils::ovrant_ustring ContentQuery::*url :
       {&ContentQuery::next_url_, &ContentQuery::previous_url_, &ContentQuery::self_url_}) {
    query.*url = "http://own/";
    ScriptTransfer(Reply(200, "body"));
    ScriptDocument(Feed());
    EXPECT_TRUE(query.QueryFeed(query.*url));
    const std::vector<std::string> effects = TakeEffects();
    EXPECT_EQ(effects.front(), "http://own/: constructed");
    EXPECT_EQ(effects.back(), "http://own/: deleted");
    EXPECT_EQ(query.*url, "");
  }
}

TEST_F(ContentQueryFeedTest, RunningOutOfMemoryIsAFailureAndDeletesTheTransport) {
  ScriptTransfer(Reply(200, "body"));
  ScriptDocument(Feed());
  SetFailingOperation("#o:startIndex");
  EXPECT_FALSE(query.QueryFeed("http://a/"));
  EXPECT_EQ(CountTransports(), 0);
  EXPECT_EQ(query.title_, "");
}

}  // namespace
}  // namespace stowra_substitute

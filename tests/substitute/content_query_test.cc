// SPDX-License-Identifier: MIT
// What ContentQuery asks of reader and transport, and in what order.

#include <climits>
#include <tuple>
#include <utility>

#include "tests/content/fields.h"
#include "tests/substitute/content_fixture.h"

namespace stowra_substitute {
namespace {

using stowra_test::ExpectEmpty;

// How an entry without anything in it is read.
const std::string kEmptyEntry =
    "!.a:id | !+a:category | !.a:title | !.a:summary | !+a:link | !+a:content | "
    "!+a:author | !?s:dynamicComponent | !?s:classifiedComponent | !+m:group";

XmlElement Link(const XmlElement::Attributes& attributes) { return With("a:link", attributes); }

// A collection: it needs no rendition.
XmlElement Entry(const std::string& id) {
  const char* const type = "application/atom+xml";
  return Parent("a:entry",
                {Leaf("a:id", id), Leaf("a:title", "t"), With("a:category", {{"term", "x"}}),
                 Link({{"rel", "r"}, {"href", "h"}, {"type", "t"}}),
                 With("a:content", {{"type", type}, {"src", "http://c/"}}),
                 Parent("a:author", {Leaf("a:name", "n"), Leaf("a:uri", "u")}),
                 Parent("m:group", {With("m:thumbnail", {{"url", "http://t/"}})})});
}

// A feed with title and counts, and `more` behind them.
XmlElement Feed(const std::vector<XmlElement>& more = {}) {
  XmlElement feed = Parent("a:feed", {Leaf("a:title", "chairs"), Leaf("o:totalResults", "7"),
                                      Leaf("o:startIndex", "3"), Leaf("o:itemsPerPage", "2")});
  feed.children.insert(feed.children.end(), more.begin(), more.end());
  return feed;
}

class ContentQueryLoadTest : public ContentTest {
 protected:
  bool Load(const XmlElement& document) {
    ScriptDocument(document);
    Bytes bytes("<feed/>");
    return query.Load(bytes.data(), bytes.length());
  }

  ContentQuery query;
};

TEST_F(ContentQueryLoadTest, WalksAFeedInItsOwnOrderWhateverIsMissing) {
  const XmlElement full = Feed({Link({{"rel", "self"}, {"href", "h"}, {"type", "t"}}),
                                Link({{"rel", "self"}, {"href", "h"}}), Link({{"rel", "self"}}),
                                Link({}), Parent("a:entry", {}), Parent("a:entry", {})});
  const std::tuple<XmlElement, bool, std::string> documents[] = {
      {full, true,
       "+a:feed | .a:title | +a:link | @rel | @href | @type | >a:link | @rel | @href | !@type | "
       ">a:link | @rel | !@href | >a:link | !@rel | !>a:link | -a:link | #o:totalResults | "
       "#o:startIndex | #o:itemsPerPage | +a:entry | " +
           kEmptyEntry + " | >a:entry | " + kEmptyEntry + " | !>a:entry | -a:entry | -a:feed"},
      {Parent("a:feed", {}), false,
       "+a:feed | !.a:title | !+a:link | !#o:totalResults | !#o:startIndex | !#o:itemsPerPage | "
       "!+a:entry | -a:feed"},
      {Parent("feed", {Feed()}), false, "!+a:feed"}};
  for (const auto& [document, loads, walk] : documents) {
    EXPECT_EQ(Load(document), loads) << walk;
    EXPECT_EQ(TakeText(),
              "Get_IXMLInput 7 bytes: <feed/> | " + walk + " | End_IXMLInput | reader deleted");
  }
}

TEST_F(ContentQueryLoadTest, LengthIsPassedAsItIs) {
  for (const int length : {0, -1}) {
    ScriptUnreadableDocument();
    EXPECT_FALSE(query.Load(nullptr, length));
    EXPECT_EQ(TakeText(), "Get_IXMLInput " + std::to_string(length) + " bytes: ");
  }
}

TEST_F(ContentQueryLoadTest, WhatLeaveElementGivesIsNotLookedAt) {
  SetLeaveResult(false);
  EXPECT_TRUE(Load(Feed({Link({{"rel", "self"}, {"href", "h"}, {"type", "application/atom+xml"}}),
                         Entry("1"), Entry("2")})));
  EXPECT_EQ(query.items_.size(), 2U);
  EXPECT_EQ(query.self_url_, "h");
}

// Whatever runs out of memory, nothing of it stays.
TEST_F(ContentQueryLoadTest, OutOfMemoryEmptiesTheQueryAndReleasesTheReader) {
  const XmlElement feed =
      Feed({Link({{"rel", "self"}, {"href", "h"}, {"type", "t"}}), Entry("1"), Entry("2")});
  for (const char* const operation : {"+a:feed", ".a:title", "@href", "#o:itemsPerPage", "+a:entry",
                                      ".a:id", "+m:group", ">a:entry", "-a:feed"}) {
    SetFailingOperation(operation);
    EXPECT_FALSE(Load(feed)) << operation;
    EXPECT_EQ(CountReaders(), 0) << operation;
    ExpectEmpty(query);
  }
}

// The query holds the feed "old".
class ContentQueryFeedTest : public ContentQueryLoadTest {
 protected:
  ContentQueryFeedTest() {
    XmlElement feed = Feed();
    feed.children[0].text = "old";
    EXPECT_TRUE(Load(feed));
    TakeEffects();
  }
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

// A reader's length is an int. Cut to 32 bits, the last one would be that of the body.
TEST_F(ContentQueryFeedTest, BodyIsPassedWithALengthThatFitsAnInt) {
  const std::pair<Outcome, std::string> bodies[] = {
      {Reply(200, ""), "0 bytes: "},
      {Reply(200, std::string("a\0b", 3)), std::string("3 bytes: a\0b", 12)},
      {{true, 200, "body", {}, INT_MAX}, "2147483647 bytes: "},
      {{true, 200, "body", {}, INT_MAX + 1UL}, "-1 bytes: "},
      {{true, 200, "body", {}, (1UL << 32) + 4}, "-1 bytes: "}};
  for (const auto& [body, effect] : bodies) {
    ScriptTransfer(body);
    ScriptUnreadableDocument();
    EXPECT_FALSE(query.QueryFeed("http://a/"));
    EXPECT_THAT(TakeEffects(), testing::Contains("Get_IXMLInput " + effect));
    EXPECT_EQ(query.title_, "") << effect;
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

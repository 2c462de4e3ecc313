// SPDX-License-Identifier: MIT
// What ContentQuery::Load asks of the reader, and in what order.

#include <new>
#include <string>
#include <tuple>

#include "common_stowraapi/content/content_query.h"
#include "tests/content/fields.h"
#include "tests/substitute/content_fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::stowraapiclient::ContentQuery;
using stowra_test::ExpectEmpty;

// An entry without anything in it is read so.
constexpr char kEmptyEntry[] =
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

XmlElement FeedWithout(const std::string& name) {
  XmlElement feed = Feed({Entry("1")});
  for (XmlElement& child : feed.children) {
    if (child.name == name) child.name = "other";
  }
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
  const std::string entry = kEmptyEntry;
  const std::tuple<XmlElement, bool, std::string> documents[] = {
      {full, true,
       "+a:feed | .a:title | +a:link | @rel | @href | @type | >a:link | @rel | @href | !@type | "
       ">a:link | @rel | !@href | >a:link | !@rel | !>a:link | -a:link | #o:totalResults | "
       "#o:startIndex | #o:itemsPerPage | +a:entry | " +
           entry + " | >a:entry | " + entry + " | !>a:entry | -a:entry | -a:feed"},
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

TEST_F(ContentQueryLoadTest, ADocumentThatDoesNotOpenIsNotRead) {
  ASSERT_TRUE(Load(Feed({Entry("1")})));
  TakeEffects();
  ScriptUnreadableDocument();
  Bytes bytes("no");
  EXPECT_FALSE(query.Load(bytes.data(), bytes.length()));
  EXPECT_EQ(TakeText(), "Get_IXMLInput 2 bytes: no");
  ExpectEmpty(query);
}

TEST_F(ContentQueryLoadTest, LengthIsPassedAsItIs) {
  for (const int length : {0, -1}) {
    ScriptUnreadableDocument();
    EXPECT_FALSE(query.Load(nullptr, length));
    EXPECT_EQ(TakeText(), "Get_IXMLInput " + std::to_string(length) + " bytes: ");
  }
}

TEST_F(ContentQueryLoadTest, AMissingTitleOrCountStillReadsTheRestAndEmpties) {
  const std::string reads[] = {".a:title", "#o:totalResults", "#o:startIndex", "#o:itemsPerPage"};
  for (const std::string& missing : reads) {
    ASSERT_TRUE(Load(Feed({Entry("1")})));
    ASSERT_EQ(query.items_.size(), 1U);
    TakeEffects();
    EXPECT_FALSE(Load(FeedWithout(missing.substr(1)))) << missing;
    const std::vector<std::string> effects = TakeEffects();
    for (const std::string& read : reads) {
      EXPECT_THAT(effects, testing::Contains((read == missing ? "!" : "") + read)) << missing;
    }
    EXPECT_THAT(effects, testing::Contains("-a:entry")) << missing;
    ExpectEmpty(query);
  }
}

TEST_F(ContentQueryLoadTest, WhatLeaveElementGivesIsNotLookedAt) {
  SetLeaveResult(false);
  EXPECT_TRUE(Load(Feed({Link({{"rel", "self"}, {"href", "h"}, {"type", "application/atom+xml"}}),
                         Entry("1"), Entry("2")})));
  EXPECT_EQ(query.items_.size(), 2U);
  EXPECT_EQ(query.self_url_, "h");
}

TEST_F(ContentQueryLoadTest, SearchOperatorsAreReplacedInTheirOrder) {
  const RecordingText recording;
  EXPECT_TRUE(Load(Feed()));
  EXPECT_THAT(TakeText(), testing::HasSubstr(".a:title | replace_all ' filetype:qmf' by '' | "
                                             "replace_all ' is:downloadable' by '' | "
                                             "replace_all 'filetype:qmf' by '' | "
                                             "replace_all 'is:downloadable' by '' | !+a:link"));
  EXPECT_FALSE(Load(FeedWithout("a:title")));
  EXPECT_THAT(TakeText(), testing::Not(testing::HasSubstr("replace_all")));
}

TEST_F(ContentQueryLoadTest, EveryEntryIsGivenTheNewestVersion) {
  query.max_qmf_version_ = 8;
  EXPECT_TRUE(Load(Feed({Entry("1"), Entry("2")})));
  ASSERT_EQ(query.items_.size(), 2U);
  for (const auto* const item : query.items_) EXPECT_EQ(item->max_qmf_version_, 8);
  EXPECT_EQ(query.items_[1]->id_, "2");
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

}  // namespace
}  // namespace stowra_substitute

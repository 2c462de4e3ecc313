// What ContentQuery::Load asks of the reader, and in what order.

#include <new>
#include <string>

#include "common_stowraapi/content/content_query.h"
#include "tests/substitute/content_fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::stowraapiclient::ContentQuery;

// An entry without anything in it is read so.
constexpr char kEmptyEntry[] = R"(GetElementText a:id: none
FindElement a:category: none
GetElementText a:title: none
GetElementText a:summary: none
FindElement a:link: none
FindElement a:content: none
FindElement a:author: none
GetElementBool s:dynamicComponent: none
GetElementBool s:classifiedComponent: none
FindElement m:group: none
)";

XmlElement Link(const XmlElement::Attributes& attributes) { return {"a:link", attributes, "", {}}; }

// A collection: it needs no rendition.
XmlElement Entry(const std::string& id) {
  const char* const type = "application/atom+xml";
  return Parent("a:entry", {Leaf("a:id", id),
                            Leaf("a:title", "t"),
                            {"a:category", {{"term", "x"}}, "", {}},
                            Link({{"rel", "r"}, {"href", "h"}, {"type", "t"}}),
                            {"a:content", {{"type", type}, {"src", "http://c/"}}, "", {}},
                            Parent("a:author", {Leaf("a:name", "n"), Leaf("a:uri", "u")}),
                            Parent("m:group", {{"m:thumbnail", {{"url", "http://t/"}}, "", {}}})});
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

  void ExpectEmpty() {
    EXPECT_EQ(query.total_results_, 0);
    EXPECT_EQ(query.start_index_, 1);
    EXPECT_EQ(query.items_per_page_, 12);
    EXPECT_EQ(query.next_url_, "");
    EXPECT_EQ(query.previous_url_, "");
    EXPECT_EQ(query.self_url_, "");
    EXPECT_EQ(query.html_url_, "");
    EXPECT_EQ(query.title_, "");
    EXPECT_TRUE(query.items_.empty());
  }

  ContentQuery query;
};

TEST_F(ContentQueryLoadTest, WalksACompleteFeedInItsOwnOrder) {
  EXPECT_TRUE(Load(Feed({Link({{"rel", "self"}, {"href", "h"}, {"type", "t"}}),
                         Link({{"rel", "self"}, {"href", "h"}}), Link({{"rel", "self"}}), Link({}),
                         Parent("a:entry", {}), Parent("a:entry", {})})));
  EXPECT_EQ(TakeLines(), std::string(R"(
Get_IXMLInput 7 bytes: <feed/>
FindElement a:feed
GetElementText a:title
FindElement a:link
GetAttribute rel
GetAttribute href
GetAttribute type
NextElement a:link
GetAttribute rel
GetAttribute href
GetAttribute type: none
NextElement a:link
GetAttribute rel
GetAttribute href: none
NextElement a:link
GetAttribute rel: none
NextElement a:link: none
LeaveElement a:link
GetElementInt o:totalResults
GetElementInt o:startIndex
GetElementInt o:itemsPerPage
FindElement a:entry
)") + kEmptyEntry + "NextElement a:entry\n" +
                             kEmptyEntry + R"(NextElement a:entry: none
LeaveElement a:entry
LeaveElement a:feed
End_IXMLInput
reader deleted
)");
}

TEST_F(ContentQueryLoadTest, ReadsOnWhateverIsMissing) {
  EXPECT_FALSE(Load(Parent("a:feed", {})));
  EXPECT_EQ(TakeLines(), R"(
Get_IXMLInput 7 bytes: <feed/>
FindElement a:feed
GetElementText a:title: none
FindElement a:link: none
GetElementInt o:totalResults: none
GetElementInt o:startIndex: none
GetElementInt o:itemsPerPage: none
FindElement a:entry: none
LeaveElement a:feed
End_IXMLInput
reader deleted
)");
}

TEST_F(ContentQueryLoadTest, ARootOfAnotherNameIsReleasedAtOnce) {
  EXPECT_FALSE(Load(Parent("feed", {Feed()})));
  EXPECT_EQ(TakeLines(), R"(
Get_IXMLInput 7 bytes: <feed/>
FindElement a:feed: none
End_IXMLInput
reader deleted
)");
}

TEST_F(ContentQueryLoadTest, ADocumentThatDoesNotOpenIsNotRead) {
  ASSERT_TRUE(Load(Feed({Entry("1")})));
  TakeEffects();
  ScriptUnreadableDocument();
  Bytes bytes("no");
  EXPECT_FALSE(query.Load(bytes.data(), bytes.length()));
  EXPECT_EQ(TakeLines(), "\nGet_IXMLInput 2 bytes: no\n");
  ExpectEmpty();
}

TEST_F(ContentQueryLoadTest, LengthIsPassedAsItIs) {
  for (const int length : {0, -1}) {
    ScriptUnreadableDocument();
    EXPECT_FALSE(query.Load(nullptr, length));
    EXPECT_EQ(TakeLines(), "\nGet_IXMLInput " + std::to_string(length) + " bytes: \n");
  }
}

TEST_F(ContentQueryLoadTest, AllCountsAreReadWhateverTheOthers) {
  for (const char* const missing : {"o:totalResults", "o:startIndex", "o:itemsPerPage"}) {
    EXPECT_FALSE(Load(FeedWithout(missing))) << missing;
    const std::vector<std::string> effects = TakeEffects();
    for (const char* const count : {"o:totalResults", "o:startIndex", "o:itemsPerPage"}) {
      const std::string end = std::string(count) == missing ? ": none" : "";
      EXPECT_THAT(effects, testing::Contains("GetElementInt " + std::string(count) + end));
    }
    EXPECT_THAT(effects, testing::Contains("FindElement a:entry")) << missing;
    ExpectEmpty();
  }
}

TEST_F(ContentQueryLoadTest, AMissingTitleStillReadsTheRestAndEmptiesTheQuery) {
  ASSERT_TRUE(Load(Feed({Entry("1")})));
  EXPECT_EQ(query.items_.size(), 1U);
  TakeEffects();
  EXPECT_FALSE(Load(FeedWithout("a:title")));
  EXPECT_THAT(TakeEffects(), testing::Contains("LeaveElement a:entry"));
  ExpectEmpty();
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
  EXPECT_THAT(TakeLines(), testing::HasSubstr("GetElementText a:title\n"
                                              "replace_all ' filetype:qmf' by ''\n"
                                              "replace_all ' is:downloadable' by ''\n"
                                              "replace_all 'filetype:qmf' by ''\n"
                                              "replace_all 'is:downloadable' by ''\n"
                                              "FindElement a:link: none\n"));
  EXPECT_FALSE(Load(FeedWithout("a:title")));
  EXPECT_THAT(TakeLines(), testing::Not(testing::HasSubstr("replace_all")));
}

TEST_F(ContentQueryLoadTest, OverlappingOperatorsShowTheirOrder) {
  const std::pair<const char*, const char*> titles[] = {
      {"x is:downloadable filetype:qmf", "x"}, {"filetype:qmf is:downloadable", ""},
      {"filetype is:downloadable:qmf", ""},    {"is: filetype:qmfdownloadable", ""},
      {"is:filetype:qmfdownloadable", ""},     {"filetype:is:downloadableqmf", "filetype:qmf"},
      {" is:down filetype:qmfloadable", ""}};
  for (const auto& [title, expected] : titles) {
    XmlElement feed = Feed();
    feed.children[0].text = title;
    EXPECT_TRUE(Load(feed));
    EXPECT_EQ(query.title_, expected) << title;
  }
}

TEST_F(ContentQueryLoadTest, EveryEntryIsGivenTheNewestVersion) {
  query.max_qmf_version_ = 8;
  EXPECT_TRUE(Load(Feed({Entry("1"), Entry("2")})));
  ASSERT_EQ(query.items_.size(), 2U);
  EXPECT_EQ(query.items_[0]->max_qmf_version_, 8);
  EXPECT_EQ(query.items_[1]->max_qmf_version_, 8);
  EXPECT_EQ(query.items_[1]->id_, "2");
}

// Whatever runs out of memory, nothing of it stays.
TEST_F(ContentQueryLoadTest, OutOfMemoryEmptiesTheQueryAndReleasesTheReader) {
  const XmlElement feed =
      Feed({Link({{"rel", "self"}, {"href", "h"}, {"type", "t"}}), Entry("1"), Entry("2")});
  for (const char* const operation :
       {"FindElement a:feed", "GetElementText a:title", "GetAttribute href",
        "GetElementInt o:itemsPerPage", "FindElement a:entry", "GetElementText a:id",
        "FindElement m:group", "NextElement a:entry", "LeaveElement a:feed"}) {
    SetFailingOperation(operation);
    EXPECT_FALSE(Load(feed)) << operation;
    EXPECT_EQ(CountReaders(), 0) << operation;
    ExpectEmpty();
  }
}

}  // namespace
}  // namespace stowra_substitute

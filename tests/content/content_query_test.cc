// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/content_query.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "tests/content/feed_text.h"
#include "tests/content/fields.h"

namespace stowra_test {
namespace {

std::string AllLinks() {
  return Link("next", "http://n/", kAtom) + Link("previous", "http://p/", kAtom) +
         Link("self", "http://s/", kAtom) + Link("alternate", "http://h/", "text/html");
}

class ContentQueryTest : public testing::Test {
 protected:
  bool Load(const Parts& feed) { return LoadText(feed.text(), query); }

  // A feed that fills every member.
  static Parts Full() { return Feed().With("links", AllLinks()).With("entries", Model().text()); }

  void Fill() {
    ASSERT_TRUE(Load(Full()));
    ASSERT_EQ(query.items_.size(), 1U);
  }

  // Which of the three are true: "results", "next" and "back".
  std::string Valid() {
    return std::string(query.HasResults() ? "results " : "") + (query.NextValid() ? "next " : "") +
           (query.BackValid() ? "back" : "");
  }

  ContentQuery query;
};

TEST_F(ContentQueryTest, IsEmptyAtFirst) {
  ExpectEmpty(query);
  EXPECT_EQ(query.max_qmf_version_, 0);
  EXPECT_EQ(Valid(), "");
}

TEST_F(ContentQueryTest, ReadsTitleLinksCountsAndEntries) {
  ASSERT_TRUE(Load(Full().With("entries", Model().text() + Collection().text())));
  ASSERT_EQ(Fields(query), std::make_tuple(40, 13, 6, "http://n/", "http://p/", "http://s/",
                                           "http://h/", "chairs", 2U));
  EXPECT_EQ(query.items_[0]->kind_, 0);
  EXPECT_EQ(query.items_[1]->kind_, 1);
  EXPECT_EQ(Valid(), "results next back");
}

TEST_F(ContentQueryTest, AFeedWithoutEntriesLoads) {
  EXPECT_TRUE(Load(Feed().With("links", AllLinks())));
  EXPECT_EQ(query.next_url_, "http://n/");
  EXPECT_EQ(query.previous_url_, "http://p/");
  EXPECT_EQ(Valid(), "");
}

TEST_F(ContentQueryTest, APageWithoutNeighboursHasResultsOnly) {
  EXPECT_TRUE(Load(Feed().With("entries", Model().text())));
  EXPECT_EQ(Valid(), "results ");
  query.next_url_ = "n";
  EXPECT_EQ(Valid(), "results next ");
  query.next_url_ = "";
  query.previous_url_ = "p";
  EXPECT_EQ(Valid(), "results back");
}

TEST_F(ContentQueryTest, WithoutTitleOrACountTheFeedFailsAndTheQueryIsEmpty) {
  for (const char* const part : {"title", "total", "start", "per_page"}) {
    Fill();
    EXPECT_FALSE(Load(Full().Without(part))) << part;
    ExpectEmpty(query);
  }
}

TEST_F(ContentQueryTest, ACountThatIsNoNumberIsMissing) {
  for (const char* const text : {"", "x", "1.5", "2147483648", "0x10"}) {
    EXPECT_FALSE(Load(Feed().With("total", Tag("o:totalResults", text)))) << text;
    ExpectEmpty(query);
  }
  EXPECT_TRUE(Load(Feed()
                       .With("total", "<o:totalResults> 2147483647 </o:totalResults>")
                       .With("start", "<o:startIndex>-3</o:startIndex>")
                       .With("per_page", "<o:itemsPerPage>0</o:itemsPerPage>")));
  EXPECT_EQ(Fields(query), std::make_tuple(INT_MAX, -3, 0, "", "", "", "", "chairs", 0U));
}

TEST_F(ContentQueryTest, CountsOfAnotherNamespaceAreMissing) {
  EXPECT_FALSE(Load(Feed().With("start", "<startIndex>1</startIndex>")));
  EXPECT_FALSE(Load(Feed().With(
      "start", "<startIndex xmlns='http://a9.com/-/spec/opensearch/1.1/'>1</startIndex>")));
}

TEST_F(ContentQueryTest, AnEmptyTitleIsATitle) {
  EXPECT_TRUE(Load(Feed().With("title", "<title/>")));
  EXPECT_EQ(query.title_, "");
}

TEST_F(ContentQueryTest, OnlyAnAtomTitleCounts) {
  EXPECT_FALSE(Load(Feed().With("title", "<o:title>x</o:title><title xmlns=''>y</title>")));
  EXPECT_TRUE(Load(Feed().With("title", "<o:title>x</o:title><title>y</title><title>z</title>")));
  EXPECT_EQ(query.title_, "y");
}

TEST_F(ContentQueryTest, ADocumentThatIsNoFeedEmptiesTheQuery) {
  const std::string good = Feed().text();
  const std::string another_root =
      "<feed/>|<rss/>|<feed xmlns='http://www.w3.org/2005/Atom/'/>|"
      "<x><feed xmlns='http://www.w3.org/2005/Atom'/></x>|"
      "<Feed xmlns='http://www.w3.org/2005/Atom'/>";
  for (const std::string& bad : Split("|no XML|" + another_root + "|" + good + "<|" + good + good +
                                      "|" + good.substr(0, good.size() - 1))) {
    Fill();
    EXPECT_FALSE(LoadText(bad, query)) << bad;
    ExpectEmpty(query);
  }
  Fill();
  EXPECT_FALSE(query.Load(nullptr, 0));
  ExpectEmpty(query);
  Fill();
  Bytes bytes(good);
  EXPECT_FALSE(query.Load(bytes.data(), -1));
  ExpectEmpty(query);
}

TEST_F(ContentQueryTest, ABadEntryIsLeftOutAndTheOthersKeepTheirOrder) {
  const auto model = [](const char* id) { return Model().With("id", Tag("id", id)).text(); };
  ASSERT_TRUE(Load(Feed().With("entries", Model().Without("id").text() + model("1") + "<entry/>" +
                                              model("2") + Model().Without("group").text() +
                                              model("3") + Model().Without("link").text())));
  ASSERT_EQ(query.items_.size(), 3U);
  EXPECT_EQ(query.items_[0]->id_, "1");
  EXPECT_EQ(query.items_[1]->id_, "2");
  EXPECT_EQ(query.items_[2]->id_, "3");
}

TEST_F(ContentQueryTest, ARenditionHasNothingFromTheEntryBeforeIt) {
  const Parts without = Model().With("group", Group(Rendition("http://a/")));
  EXPECT_TRUE(Load(Feed().With("entries", Model().text() + without.text())));
  EXPECT_EQ(query.items_.size(), 1U);
}

TEST_F(ContentQueryTest, NothingAccumulatesFromPageToPage) {
  Fill();
  ASSERT_TRUE(
      Load(Feed().With("title", "<title>tables</title>").With("entries", Collection().text())));
  ASSERT_EQ(Fields(query), std::make_tuple(40, 13, 6, "", "", "", "", "tables", 1U));
  EXPECT_EQ(query.items_[0]->kind_, 1);
}

TEST_F(ContentQueryTest, ClearGivesEveryMemberItsDefault) {
  Fill();
  for (int i = 0; i < 2; ++i) {
    query.Clear();
    ExpectEmpty(query);
    EXPECT_FALSE(query.HasResults());
  }
}

TEST_F(ContentQueryTest, NullItemsAreAllowed) {
  Fill();
  query.items_.push_back(nullptr);
  query.items_.insert(query.items_.begin(), nullptr);
  query.Clear();
  ExpectEmpty(query);
  query.items_.push_back(nullptr);
}

TEST_F(ContentQueryTest, TheNewestVersionSurvivesAndIsGivenToEveryItem) {
  query.max_qmf_version_ = 8;
  const Parts model =
      Model().With("group", Group(Rendition("http://a/?rtyp=s9") + Rendition("http://a/?rtyp=s8")));
  ASSERT_TRUE(Load(Feed().With("entries", model.text() + model.text())));
  ASSERT_EQ(query.items_.size(), 2U);
  for (const auto* const item : query.items_) {
    EXPECT_EQ(item->max_qmf_version_, 8);
    EXPECT_EQ(item->download_url_, "http://a/?rtyp=s8");
  }
  query.Clear();
  EXPECT_EQ(query.max_qmf_version_, 8);
  EXPECT_FALSE(LoadText("no", query));
  EXPECT_EQ(query.max_qmf_version_, 8);
  EXPECT_FALSE(query.QueryFeed(""));
  EXPECT_EQ(query.max_qmf_version_, 8);
}

}  // namespace
}  // namespace stowra_test

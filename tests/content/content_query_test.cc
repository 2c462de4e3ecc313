// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/content_query.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "tests/content/feed_text.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::ContentQuery;

void ExpectEmpty(const ContentQuery& query) {
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

std::string AllLinks() {
  const char* const atom = "application/atom+xml";
  return Link("next", "http://n/", atom) + Link("previous", "http://p/", atom) +
         Link("self", "http://s/", atom) + Link("alternate", "http://h/", "text/html");
}

class ContentQueryTest : public testing::Test {
 protected:
  bool Load(const Parts& feed) { return LoadText(feed.text(), query); }

  // Fills every member.
  void Fill() {
    ASSERT_TRUE(Load(Feed().With("links", AllLinks()).With("entries", Model().text())));
    ASSERT_EQ(query.items_.size(), 1U);
  }

  ContentQuery query;
};

TEST_F(ContentQueryTest, IsEmptyAtFirst) {
  ExpectEmpty(query);
  EXPECT_EQ(query.max_qmf_version_, 0);
  EXPECT_FALSE(query.HasResults());
  EXPECT_FALSE(query.NextValid());
  EXPECT_FALSE(query.BackValid());
}

TEST_F(ContentQueryTest, ReadsTitleLinksCountsAndEntries) {
  ASSERT_TRUE(
      Load(Feed().With("links", AllLinks()).With("entries", Model().text() + Collection().text())));
  EXPECT_EQ(query.title_, "chairs");
  EXPECT_EQ(query.next_url_, "http://n/");
  EXPECT_EQ(query.previous_url_, "http://p/");
  EXPECT_EQ(query.self_url_, "http://s/");
  EXPECT_EQ(query.html_url_, "http://h/");
  EXPECT_EQ(query.total_results_, 40);
  EXPECT_EQ(query.start_index_, 13);
  EXPECT_EQ(query.items_per_page_, 6);
  ASSERT_EQ(query.items_.size(), 2U);
  EXPECT_EQ(query.items_[0]->kind_, 0);
  EXPECT_EQ(query.items_[1]->kind_, 1);
  EXPECT_TRUE(query.HasResults());
  EXPECT_TRUE(query.NextValid());
  EXPECT_TRUE(query.BackValid());
}

TEST_F(ContentQueryTest, ReadsAFeedWhateverTheOrderOfItsParts) {
  const std::string feed = Feed().text();
  const std::string::size_type inside = feed.find('>') + 1;
  std::string turned = feed.substr(0, inside) + Model().text() +
                       "<o:itemsPerPage>6</o:itemsPerPage>" + AllLinks() + "<x/>" + Model().text() +
                       "<o:startIndex>13</o:startIndex>" +
                       "<o:totalResults>40</o:totalResults><title>chairs</title></feed>";
  ASSERT_TRUE(LoadText(turned, query));
  EXPECT_EQ(query.title_, "chairs");
  EXPECT_EQ(query.self_url_, "http://s/");
  EXPECT_EQ(query.total_results_, 40);
  EXPECT_EQ(query.items_.size(), 2U);
}

TEST_F(ContentQueryTest, AFeedWithoutEntriesLoads) {
  EXPECT_TRUE(Load(Feed().With("links", AllLinks())));
  EXPECT_EQ(query.next_url_, "http://n/");
  EXPECT_EQ(query.previous_url_, "http://p/");
  EXPECT_FALSE(query.HasResults());
  EXPECT_FALSE(query.NextValid());
  EXPECT_FALSE(query.BackValid());
}

TEST_F(ContentQueryTest, APageWithoutNeighboursHasResultsOnly) {
  EXPECT_TRUE(Load(Feed().With("entries", Model().text())));
  EXPECT_TRUE(query.HasResults());
  EXPECT_FALSE(query.NextValid());
  EXPECT_FALSE(query.BackValid());
  query.next_url_ = "n";
  EXPECT_TRUE(query.NextValid());
  EXPECT_FALSE(query.BackValid());
  query.next_url_ = "";
  query.previous_url_ = "p";
  EXPECT_FALSE(query.NextValid());
  EXPECT_TRUE(query.BackValid());
}

TEST_F(ContentQueryTest, WithoutTitleOrACountTheFeedFailsAndTheQueryIsEmpty) {
  for (const char* const part : {"title", "total", "start", "per_page"}) {
    Fill();
    EXPECT_FALSE(
        Load(Feed().With("links", AllLinks()).With("entries", Model().text()).Without(part)))
        << part;
    ExpectEmpty(query);
  }
}

TEST_F(ContentQueryTest, ACountThatIsNoNumberIsMissing) {
  for (const char* const text : {"", "x", "1.5", "2147483648", "0x10"}) {
    EXPECT_FALSE(
        Load(Feed().With("total", "<o:totalResults>" + std::string(text) + "</o:totalResults>")))
        << text;
    ExpectEmpty(query);
  }
  EXPECT_TRUE(Load(Feed()
                       .With("total", "<o:totalResults> 2147483647 </o:totalResults>")
                       .With("start", "<o:startIndex>-3</o:startIndex>")
                       .With("per_page", "<o:itemsPerPage>0</o:itemsPerPage>")));
  EXPECT_EQ(query.total_results_, INT_MAX);
  EXPECT_EQ(query.start_index_, -3);
  EXPECT_EQ(query.items_per_page_, 0);
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

TEST_F(ContentQueryTest, UnreadableDocumentsEmptyTheQuery) {
  const std::string good = Feed().text();
  for (const std::string& bad : {std::string(), std::string("no XML"), good + "<", good + good,
                                 good.substr(0, good.size() - 1)}) {
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

TEST_F(ContentQueryTest, AnotherRootEmptiesTheQuery) {
  for (const char* const bad : {"<feed/>", "<rss/>", "<feed xmlns='http://www.w3.org/2005/Atom/'/>",
                                "<x><feed xmlns='http://www.w3.org/2005/Atom'/></x>",
                                "<Feed xmlns='http://www.w3.org/2005/Atom'/>"}) {
    Fill();
    EXPECT_FALSE(LoadText(bad, query)) << bad;
    ExpectEmpty(query);
  }
}

TEST_F(ContentQueryTest, ABadEntryIsLeftOutAndTheOthersKeepTheirOrder) {
  const auto model = [](const char* id) {
    return Model().With("id", "<id>" + std::string(id) + "</id>").text();
  };
  ASSERT_TRUE(Load(Feed().With("entries", Model().Without("id").text() + model("1") + "<entry/>" +
                                              model("2") + Model().Without("group").text() +
                                              model("3") + Model().Without("link").text())));
  ASSERT_EQ(query.items_.size(), 3U);
  EXPECT_EQ(query.items_[0]->id_, "1");
  EXPECT_EQ(query.items_[1]->id_, "2");
  EXPECT_EQ(query.items_[2]->id_, "3");
}

TEST_F(ContentQueryTest, AFeedOfBadEntriesOnlyLoads) {
  EXPECT_TRUE(Load(Feed().With("links", AllLinks()).With("entries", "<entry/><entry/>")));
  EXPECT_FALSE(query.HasResults());
  EXPECT_FALSE(query.NextValid());
}

TEST_F(ContentQueryTest, NothingAccumulatesFromPageToPage) {
  Fill();
  ASSERT_TRUE(
      Load(Feed().With("title", "<title>tables</title>").With("entries", Collection().text())));
  EXPECT_EQ(query.title_, "tables");
  EXPECT_EQ(query.next_url_, "");
  EXPECT_EQ(query.previous_url_, "");
  EXPECT_EQ(query.self_url_, "");
  EXPECT_EQ(query.html_url_, "");
  ASSERT_EQ(query.items_.size(), 1U);
  EXPECT_EQ(query.items_[0]->kind_, 1);
}

TEST_F(ContentQueryTest, ClearGivesEveryMemberItsDefault) {
  Fill();
  query.Clear();
  ExpectEmpty(query);
  EXPECT_FALSE(query.HasResults());
  query.Clear();
  ExpectEmpty(query);
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

// SPDX-License-Identifier: MIT

#include <algorithm>
#include <map>
#include <set>

#include "tests/emulator/content_fixture.h"
#include "tests/support/text.h"

namespace stowra_emulator {
namespace {

class SearchTest : public ContentTest {
 protected:
  // The models of a page and of all pages that `rel` leads to. Fails the test if an address comes
  // twice.
  std::vector<std::string> ModelsFrom(std::string address, const std::string& rel) {
    std::vector<std::string> models;
    std::set<std::string> visited;
    while (!address.empty()) {
      if (!visited.insert(address).second) {
        ADD_FAILURE() << "twice at " << address;
        return models;
      }
      const XmlElement feed = GetFeed(address);
      for (const std::string& mid : Models(feed)) models.push_back(mid);
      last_address_ = address;
      address = feed.Link(rel);
    }
    return models;
  }

  std::string last_address_;
};

TEST_F(SearchTest, PagingThereAndBackCoversEveryModelOnce) {
  for (const char* count : {"12", "7", "1", "53", "100"}) {
    std::vector<std::string> there = ModelsFrom("/search?count=" + std::string(count), "next");
    std::vector<std::string> back = ModelsFrom(last_address_, "previous");
    EXPECT_EQ(there.size(), 100u) << count;
    EXPECT_EQ(std::set<std::string>(there.begin(), there.end()).size(), 100u) << count;
    std::sort(there.begin(), there.end());
    std::sort(back.begin(), back.end());
    EXPECT_EQ(there, back) << count;
  }
}

TEST_F(SearchTest, PagingKeepsTheWholeQuery) {
  const std::string query =
      "/search?q=%E6%A4%85%E5%AD%90+is%3Adownloadable&uq=u-1001&except=m-1001&count=2";
  const XmlElement first = GetFeed(query);
  ASSERT_EQ(Total(first), 4);
  const XmlElement second = GetFeed(first.Link("next"));
  EXPECT_EQ(Total(second), 4);
  EXPECT_EQ(second.Link("next"), "");
  EXPECT_EQ(GetFeed(second.Link("previous")).Link("self"), first.Link("self"));
  EXPECT_EQ(TitleOf(second), TitleOf(first));
}

TEST_F(SearchTest, ReportsPagingCountsUpToOneHundred) {
  for (const auto& [query, start, count] : {std::tuple("?start=25&count=5", "25", 5u),
                                            {"", "1", 12u},
                                            {"?count=2147483647", "1", 100u}}) {
    const XmlElement feed = GetFeed(std::string("/search") + query);
    EXPECT_EQ(feed.Child(OpenSearch("totalResults")).text, "106");
    EXPECT_EQ(feed.Child(OpenSearch("startIndex")).text, start);
    EXPECT_EQ(feed.Child(OpenSearch("itemsPerPage")).text, std::to_string(count));
    EXPECT_EQ(Entries(feed).size(), count) << query;
  }
}

TEST_F(SearchTest, OmitsNextAtTheEndAndPreviousAtTheStart) {
  EXPECT_EQ(GetFeed("/search?count=12").Link("previous"), "");
  EXPECT_NE(GetFeed("/search?start=94&count=12").Link("next"), "");
  EXPECT_EQ(GetFeed("/search?start=95&count=12").Link("next"), "");
  EXPECT_THAT(GetFeed("/search?start=5&count=12").Link("previous"), HasSubstr("start=1&"));
}

TEST_F(SearchTest, LinksBackFromBeyondTheEnd) {
  const XmlElement feed = GetFeed("/search?start=2147483647&count=100");
  EXPECT_EQ(Entries(feed).size(), 0u);
  EXPECT_EQ(Total(feed), 106);
  EXPECT_EQ(feed.Link("next"), "");
  EXPECT_EQ(Entries(GetFeed(feed.Link("previous"))).size(), 100u);
  EXPECT_EQ(GetFeed("/search?q=nothing-like-it&start=7").Link("previous"), "");
}

TEST_F(SearchTest, EveryWordMustOccur) {
  EXPECT_EQ(CountOf("chair"), 11) << "ten models and a collection that mentions chairs";
  EXPECT_THAT(TitlesFor("oak%20chair"), ElementsAre("Oak Chair"));
  EXPECT_THAT(TitlesFor("chair+oak"), ElementsAre("Oak Chair"));
  EXPECT_EQ(CountOf("oak%20table"), 0);
  EXPECT_EQ(CountOf("hai"), 0) << "no word begins with it";
}

TEST_F(SearchTest, OnlyTheLastWordMatchesAsPrefix) {
  EXPECT_THAT(TitlesFor("chair+oa"), ElementsAre("Oak Chair"));
  EXPECT_EQ(CountOf("oa+chair"), 0);
}

TEST_F(SearchTest, IgnoresCaseAndLatinAccents) {
  EXPECT_THAT(TitlesFor("GEMUTLICHER"), ElementsAre("Gemütlicher Stuhl"));
  EXPECT_THAT(TitlesFor("%CE%9E%CE%8E%CE%9B%CE%99%CE%9D%CE%97"), ElementsAre("Ξύλινη καρέκλα"));
  EXPECT_THAT(TitlesFor("%D0%A1%D0%A2%D0%A3%D0%9B"), ElementsAre("Стул со спинкой"));
}

TEST_F(SearchTest, HeedsAccentsOnOtherLetters) {
  EXPECT_EQ(CountOf("%CE%BE%CF%8D%CE%BB%CE%B9%CE%BD%CE%B7"), 1) << "ξύλινη";
  EXPECT_EQ(CountOf("%CE%BE%CF%85%CE%BB%CE%B9%CE%BD%CE%B7"), 0) << "ξυλινη";
}

TEST_F(SearchTest, FindsWordsInManyScripts) {
  EXPECT_EQ(CountOf("%E6%A4%85%E5%AD%90"), 10) << "椅子, a keyword of all chairs";
  EXPECT_THAT(TitlesFor("%D9%83%D8%B1%D8%B3%D9%8A%20%D8%AE%D8%B4%D8%A8%D9%8A"),
              ElementsAre("كرسي خشبي"));
  EXPECT_THAT(TitlesFor("%F0%9F%AA%91"), ElementsAre("🪑 Chair for Two"));
  EXPECT_THAT(TitlesFor("%E6%A4%85%E5%AD%90%E3%80%80oak"), ElementsAre("Oak Chair"))
      << "words separated by a wide space";
}

TEST_F(SearchTest, BestMatchComesFirst) {
  EXPECT_EQ(TitlesFor("tree").front(), "Tree & Tree & Tree");
}

TEST_F(SearchTest, KeepsOperatorsOnlyInTheTitle) {
  for (const char* query :
       {"chair%20filetype:qmf", "chair+filetype%3Aqmf+is%3Adownloadable", "is:downloadable%20chair",
        "chair&q=is:downloadable", "filetype:qmf&q=chair"}) {
    EXPECT_EQ(CountOf(query), 11) << query;
  }
  EXPECT_EQ(CountOf("filetype:qmf%20is:downloadable"), 106);
  EXPECT_EQ(CountOf("filetype:qmfx"), 0) << "a word, not an operator";
  const XmlElement feed = GetFeed("/search?q=oak%20chair%20filetype:qmf&q=is:downloadable");
  EXPECT_EQ(TitleOf(feed), "oak chair filetype:qmf is:downloadable");
}

TEST_F(SearchTest, EmptyQueryFindsEverything) {
  for (const char* query : {"", "%20", "+%09+", "&q="}) EXPECT_EQ(CountOf(query), 106) << query;
  EXPECT_EQ(TitleOf(GetFeed("/search?q=")), "All models and collections");
}

TEST_F(SearchTest, IgnoresWordsOfPunctuation) {
  for (const char* query : {"%26", "*", "-", "%22", "%2B", "%E2%80%A6", "%E3%80%81", "%E2%80%94",
                            "%24%20!%20%3D", "-+is:downloadable"}) {
    EXPECT_EQ(CountOf(query), 106) << query;
  }
  for (const char* query : {"chair+-", "chair+%E2%80%A6+%26", "-+chair", "chair+-+is:downloadable",
                            "chair+%26&q=%22"}) {
    EXPECT_EQ(CountOf(query), CountOf("chair")) << query;
  }
  EXPECT_THAT(TitlesFor("chair+%26+oa+-"), ElementsAre("Oak Chair"));
  EXPECT_EQ(CountOf("oa+-+chair"), 0) << "another word follows it";
}

TEST_F(SearchTest, SearchesForDigitsAndSymbols) {
  EXPECT_EQ(CountOf("%EF%A3%BF"), 0) << "a private-use character";
  EXPECT_EQ(CountOf("987654"), 0);
  EXPECT_EQ(CountOf("chair+%C2%A9"), 0) << "a copyright sign";
}

TEST_F(SearchTest, MatchesTextWithoutSpacesFromItsStart) {
  EXPECT_THAT(TitlesFor("%E6%9C%A8%E3%81%AE"), ElementsAre("木の椅子")) << "木の";
  EXPECT_EQ(CountOf("%E3%81%AE"), 0) << "の, inside that title";
}

TEST_F(SearchTest, TakesSqlAndIndexSyntaxAsText) {
  for (const std::string& query : stowra_test::Split(
           "%22|%22%22%22|%27|chair%22|%22chair|*|**|(|)|chair%29|AND|OR|NOT|chair%20AND|"
           "NEAR(chair|NEAR%28a%20b%2C%205%29|title:chair|-chair|%5Echair|chair%20%2B%20oak|"
           "%7Btitle%7D%3Achair|%00|chair%00%22|%FF%FE|%C3|%ED%A0%80|;DROP%20TABLE%20items|"
           "%27%20OR%201%3D1%20--|%5C|%25|_|%0D%0A|%E2%80%8B|%F4%8F%BF%BF|a:b:c|!!!|%3F1")) {
    const XmlElement feed = GetFeed("/search?q=" + query);
    EXPECT_EQ(static_cast<int>(Entries(feed).size()), std::min(Total(feed), 12)) << query;
    Get("/search.html?q=" + query);
  }
  EXPECT_EQ(CountOf("chair%22"), 11);
  EXPECT_EQ(CountOf("title:chair"), 0) << "two words that never stand together";
  EXPECT_EQ(CountOf("%27%20OR%201%3D1%20--"), 0);
  EXPECT_EQ(CountOf(""), 106) << "nothing was dropped";
}

TEST_F(SearchTest, AcceptsManyWords) {
  std::string query = "chair";
  for (int i = 0; i < 1300; ++i) query += "+chair";
  EXPECT_EQ(CountOf(query), 10) << "only the last word matches as a prefix";
}

TEST_F(SearchTest, FindsTheWorkOfOneUser) {
  std::map<std::string, int> counts;
  for (const char* user : {"u-1001", "u-1002", "u-1003", "u-1004", "u-1005", "u-9999", "%27"}) {
    counts[user] = Total(GetFeed("/search?uq=" + std::string(user)));
  }
  EXPECT_EQ(counts["u-1001"] + counts["u-1002"] + counts["u-1003"] + counts["u-1004"], 106);
  EXPECT_EQ(counts["u-1001"], 26);
  EXPECT_EQ(counts["u-1005"] + counts["u-9999"] + counts["%27"], 0);
  EXPECT_EQ(TitleOf(GetFeed("/search?uq=u-1001")), "By Zoë Ångström");
}

TEST_F(SearchTest, FindsOnlyTheModelsOfACollection) {
  const XmlElement feed = GetFeed("/search?collection=c-1&q=is:downloadable&count=100");
  EXPECT_EQ(Total(feed), 20) << "chairs and tables";
  EXPECT_EQ(Models(feed).size(), 20u);
  EXPECT_EQ(TitleOf(feed), "Kitchen & Dining is:downloadable");
  EXPECT_EQ(Total(GetFeed("/search?collection=c-1&q=chair&q=is:downloadable")), 10);
  EXPECT_THAT(GetError("/search?collection=c-99", 404), HasSubstr("c-99"));
  EXPECT_THAT(GetError("/search?collection=m-1001", 404), HasSubstr("m-1001"));
}

TEST_F(SearchTest, LeavesOutOneModel) {
  const XmlElement feed = GetFeed("/search?uq=u-1001&except=m-1001&count=100");
  EXPECT_EQ(Total(feed), 25);
  EXPECT_THAT(Models(feed), Not(Contains("m-1001")));
  EXPECT_THAT(Models(GetFeed("/search?uq=u-1001&count=100")), Contains("m-1001"));
}

TEST_F(SearchTest, RefusesBadParameters) {
  for (const char* query :
       {"start=0", "start=-1", "start=x", "start=", "start=1.5", "start=2147483648", "start=%201",
        "start=1x", "start=99999999999999999999", "count=0", "count=-12", "count=x",
        "count=", "count=+5"}) {
    EXPECT_THAT(GetError("/search?" + std::string(query), 400), HasSubstr("must be a number"));
    GetError("/search.html?" + std::string(query), 400);
  }
  EXPECT_THAT(GetError("/search?page=2", 400), HasSubstr("'page'"));
  EXPECT_THAT(GetError("/search?Q=chair", 400), HasSubstr("q, uq, collection"));
}

}  // namespace
}  // namespace stowra_emulator

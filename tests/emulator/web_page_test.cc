// SPDX-License-Identifier: MIT

#include "tests/emulator/content_fixture.h"

namespace stowra_emulator {
namespace {

std::vector<std::string> TextsOf(const XmlElement& page, const std::string& name) {
  std::vector<std::string> texts;
  for (const XmlElement* element : page.Descendants(name)) texts.push_back(element->text);
  return texts;
}

// The address of the link with this rel, or empty.
std::string Neighbour(const XmlElement& page, const std::string& rel) {
  for (const XmlElement* link : page.Descendants("a")) {
    const auto found = link->attributes.find("rel");
    if (found != link->attributes.end() && found->second == rel) return link->Attribute("href");
  }
  return std::string();
}

using WebPageTest = ContentTest;

TEST_F(WebPageTest, ShowsTheResultsOfTheFeed) {
  for (const char* query : {"", "q=chair&count=5", "uq=u-1002&start=3", "collection=c-4",
                            "q=%26+%3C", "q=nothing-like-it", "q=chair&start=500"}) {
    const XmlElement feed = GetFeed("/search?" + std::string(query));
    const XmlElement page = GetPage(feed.Link("alternate"));
    EXPECT_EQ(TextsOf(page, "h2"), Titles(feed)) << query;
    EXPECT_EQ(Neighbour(page, "next").empty(), feed.Link("next").empty()) << query;
    EXPECT_EQ(Neighbour(page, "prev").empty(), feed.Link("previous").empty()) << query;
  }
}

TEST_F(WebPageTest, EveryResultHasAPictureAndALinkToItsPage) {
  const XmlElement page = GetPage("/search.html?count=100");
  const auto results = page.Descendants("li");
  ASSERT_THAT(results, SizeIs(100));
  for (const XmlElement* result : results) {
    const XmlElement& picture = result->Descendant("img");
    const std::string title = TextsOf(*result, "h2").at(0);
    EXPECT_EQ(picture.Attribute("alt"), "Picture of " + title);
    EXPECT_THAT(Get(picture.Attribute("src")).body, StartsWith("\x89PNG"));
    const XmlElement target = GetPage(result->Descendants("a").at(0)->Attribute("href"));
    EXPECT_THAT(TextsOf(target, "h1"), ElementsAre(title));
  }
}

TEST_F(WebPageTest, LinksToTheNextAndPreviousPage) {
  const XmlElement first = GetPage("/search.html?q=chair&count=4");
  const XmlElement second = GetPage(Neighbour(first, "next"));
  const XmlElement third = GetPage(Neighbour(second, "next"));
  EXPECT_EQ(Neighbour(third, "next"), "");
  EXPECT_EQ(TextsOf(GetPage(Neighbour(second, "prev")), "h2"), TextsOf(first, "h2"));
  EXPECT_EQ(Neighbour(first, "prev"), "");
  EXPECT_THAT(TextsOf(first, "p").at(0), HasSubstr("1–4 of 11"));
  EXPECT_THAT(TextsOf(third, "p").at(0), HasSubstr("9–11 of 11"));
}

TEST_F(WebPageTest, LinksToTheFeed) {
  const XmlElement page = GetPage("/search.html?q=chair&start=3&count=2");
  const auto links = page.Descendants("link");
  ASSERT_THAT(links, SizeIs(2));
  EXPECT_EQ(links[0]->Attribute("rel"), "icon");
  EXPECT_EQ(links[1]->Attribute("rel"), "alternate");
  EXPECT_EQ(links[1]->Attribute("type"), "application/atom+xml");
  EXPECT_EQ(Titles(GetFeed(links[1]->Attribute("href"))), TextsOf(page, "h2"));
}

TEST_F(WebPageTest, SearchBoxKeepsTheQuery) {
  const XmlElement page = GetPage("/search.html?q=%22oak%22%20%3C%26");
  const XmlElement& form = page.Descendant("form");
  EXPECT_EQ(form.Attribute("action"), "/search.html");
  EXPECT_EQ(form.Attribute("method"), "get");
  EXPECT_EQ(form.Descendant("input").Attribute("name"), "q");
  EXPECT_EQ(form.Descendant("input").Attribute("value"), "\"oak\" <&");
  EXPECT_THAT(TextsOf(page, "h1"), ElementsAre("Results for “\"oak\" <&”"));
}

TEST_F(WebPageTest, SaysWhenThereAreNoResults) {
  EXPECT_THAT(TextsOf(GetPage("/search.html?q=nothing-like-it"), "p"),
              ElementsAre("Nothing was found."));
  EXPECT_THAT(TextsOf(GetPage("/search.html?start=500"), "p"),
              ElementsAre("There are no more results."));
}

TEST_F(WebPageTest, ModelPageHasPictureAndDownloads) {
  const XmlElement page = GetPage("/model?mid=m-1081");
  EXPECT_THAT(TextsOf(page, "h1"), ElementsAre("Chair <No. 7> & Cushion"));
  EXPECT_THAT(Get(page.Descendant("img").Attribute("src")).body, StartsWith("\x89PNG"));
  const XmlElement feed = GetFeed("/search?q=cushion");
  const auto contents = Contents(*Entries(feed).at(0));
  const auto links = page.Descendants("ul").at(0)->Descendants("a");
  ASSERT_EQ(links.size(), contents.size());
  for (std::size_t i = 0; i < links.size(); ++i) {
    EXPECT_EQ(emulator_.url() + links[i]->Attribute("href"), contents[i]->Attribute("url"));
    Get(links[i]->Attribute("href"));
  }
}

TEST_F(WebPageTest, RefusesUnknownModelAndParameter) {
  EXPECT_THAT(GetError("/model?mid=m-9999", 404), HasSubstr("m-9999"));
  EXPECT_THAT(GetError("/model?mid=c-1", 404), HasSubstr("c-1"));
  EXPECT_THAT(GetError("/model?mid=%27%FF", 404), HasSubstr("no model"));
  EXPECT_THAT(GetError("/model", 400), HasSubstr("'mid' is missing"));
  EXPECT_THAT(GetError("/model?mid=", 400), HasSubstr("'mid' is missing"));
  EXPECT_THAT(GetError("/model?mid=m-1001&x=1", 400), HasSubstr("'x'"));
}

}  // namespace
}  // namespace stowra_emulator

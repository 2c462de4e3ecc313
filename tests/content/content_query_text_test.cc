// SPDX-License-Identifier: MIT
// The title and the links of a page of search results.

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>

#include "tests/content/feed_text.h"

namespace stowra_test {
namespace {

constexpr char kHtml[] = "text/html";

class ContentQueryTextTest : public testing::Test {
 protected:
  std::string TitleOf(const std::string& title) {
    EXPECT_TRUE(LoadText(Feed().With("title", Tag("title", title)).text(), query));
    return query.title_.utf8();
  }

  void LoadLinks(const std::string& links) {
    EXPECT_TRUE(LoadText(Feed().With("links", links).text(), query));
  }

  // The four URLs: self, next, previous, alternate.
  std::string Urls() const {
    return query.self_url_.utf8() + "|" + query.next_url_.utf8() + "|" +
           query.previous_url_.utf8() + "|" + query.html_url_.utf8();
  }

  ContentQuery query;
};

TEST_F(ContentQueryTextTest, SearchOperatorsAreRemovedFromTheTitle) {
  const std::pair<const char*, const char*> titles[] = {
      {"chairs filetype:qmf is:downloadable", "chairs"},
      {"chairs is:downloadable filetype:qmf", "chairs"},
      {"filetype:qmf chairs", " chairs"},
      {"is:downloadable chairs", " chairs"},
      {"is:downloadable filetype:qmf chairs", " chairs"},
      {"filetype:qmf", ""},
      {"a filetype:qmf b filetype:qmf c", "a b c"},
      {"a is:downloadable b is:downloadable c", "a b c"},
      {"filetype:qmfis:downloadable", ""},
      {"a  filetype:qmf  b", "a   b"},
      {"filetype:qmfx xis:downloadable", "x x"},
      {"FILETYPE:QMF Is:Downloadable", "FILETYPE:QMF Is:Downloadable"},
      {"filetype: qmf is: downloadable", "filetype: qmf is: downloadable"},
      {"\xC3\xA9 filetype:qmf \xF0\x9F\xAA\x91", "\xC3\xA9 \xF0\x9F\xAA\x91"}};
  for (const auto& [title, expected] : titles) EXPECT_EQ(TitleOf(title), expected) << title;
}

// A removal may join text that a later removal matches, but not one that an earlier removal
// matches.
TEST_F(ContentQueryTextTest, SearchOperatorsAreRemovedInOneOrder) {
  EXPECT_EQ(TitleOf("x is: filetype:qmfdownloadable"), "x");
  EXPECT_EQ(TitleOf("x filetype is:downloadable:qmf"), "x ");
  EXPECT_EQ(TitleOf("x filetype:is:downloadableqmf"), "x filetype:qmf");
  EXPECT_EQ(TitleOf("x is:filetype:qmfdownloadable"), "x ");
  EXPECT_EQ(TitleOf("xfiletype filetype:qmf:qmf"), "x");
  EXPECT_EQ(TitleOf("filetype is:downloadable:qmf"), "");
  EXPECT_EQ(TitleOf("is: filetype:qmfdownloadable"), "");
  EXPECT_EQ(TitleOf("y is:down filetype:qmfloadable"), "y");
}

TEST_F(ContentQueryTextTest, OtherRelationsAndTypesAreIgnored) {
  std::string links;
  for (const char* const rel : {"self", "next", "previous"}) {
    for (const char* const type : {"text/html", "application/atom+xml;type=feed",
                                   "Application/Atom+XML", "application/xml", ""}) {
      links += Link(rel, "X", type);
    }
  }
  for (const char* const type : {"application/atom+xml", "TEXT/HTML", "text/html;charset=utf-8"}) {
    links += Link("alternate", "X", type);
  }
  for (const char* const rel : {"Self", "NEXT", "prev", "first", "last", "related", ""}) {
    links += Link(rel, "X", kAtom) + Link(rel, "X", kHtml);
  }
  LoadLinks(links);
  EXPECT_EQ(Urls(), "|||");
}

TEST_F(ContentQueryTextTest, AnIncompleteLinkIsIgnoredAndTheOthersCount) {
  LoadLinks(
      "<link rel='self' type='application/atom+xml'/><link rel='next' href='X'/>"
      "<link href='X' type='text/html'/><link/>" +
      Link("previous", "P", kAtom) + "<link rel='previous' href='X'/>");
  EXPECT_EQ(Urls(), "||P|");
}

TEST_F(ContentQueryTextTest, TheLastMatchingLinkGoesToItsField) {
  const std::tuple<const char*, const char*, const char*> links[] = {
      {"self", kAtom, "2|||"},
      {"next", kAtom, "|2||"},
      {"previous", kAtom, "||2|"},
      {"alternate", kHtml, "|||2"},
  };
  for (const auto& [rel, type, urls] : links) {
    LoadLinks(Link(rel, "1", type) + Link(rel, "2", type) + Link(rel, "3", "other/type") +
              "<link rel='" + rel + "' href='4'/>");
    EXPECT_EQ(Urls(), urls);
  }
  LoadLinks(Link("self", "1", kAtom) + Link("self", "", kAtom));
  EXPECT_EQ(Urls(), "|||");
}

TEST_F(ContentQueryTextTest, LinksOfOtherNamespacesAndOfEntriesAreNotTheFeeds) {
  LoadLinks(
      "<link xmlns='' rel='self' href='X' type='application/atom+xml'/>"
      "<m:link rel='self' href='X' type='application/atom+xml'/>"
      "<link m:rel='self' href='X' type='application/atom+xml'/>"
      "<entry>" +
      Link("next", "X", kAtom) + "</entry>");
  EXPECT_EQ(Urls(), "|||");
}

TEST_F(ContentQueryTextTest, UrlsAreTakenAsTheyStand) {
  LoadLinks(Link("next", "?q=%C3%A9&amp;p=2 \xC3\xA9", kAtom));
  EXPECT_EQ(query.next_url_, "?q=%C3%A9&p=2 \xC3\xA9");
}

}  // namespace
}  // namespace stowra_test

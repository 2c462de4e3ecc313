// SPDX-License-Identifier: MIT

#include <algorithm>
#include <map>
#include <set>

#include "tests/emulator/content_fixture.h"

namespace stowra_emulator {
namespace {

constexpr const char* kUserQuery = "http://schemas.stowra.example/stowra/2008#user.query";

std::string TermOf(const XmlElement& entry) {
  return entry.Child(Atom("category")).Attribute("term");
}

bool IsCollection(const XmlElement& entry) {
  return TermOf(entry) == "http://schemas.stowra.example/stowra/2008#collection";
}

std::string RtypOf(const std::string& address) {
  const std::size_t start = address.find("rtyp=");
  return start == std::string::npos ? "" : address.substr(start + 5);
}

// The type for each "rtyp" of an entry.
std::map<std::string, std::string> RenditionsOf(const XmlElement& entry) {
  std::map<std::string, std::string> renditions;
  for (const XmlElement* content : Contents(entry)) {
    renditions[RtypOf(content->Attribute("url"))] = content->Attribute("type");
  }
  return renditions;
}

class SearchFeedTest : public ContentTest {
 protected:
  // All entries of the service.
  std::vector<XmlElement> AllEntries() {
    std::vector<XmlElement> all;
    for (const char* start : {"1", "101"}) {
      const XmlElement feed = GetFeed("/search?count=100&start=" + std::string(start));
      for (const XmlElement* entry : Entries(feed)) all.push_back(*entry);
    }
    EXPECT_EQ(all.size(), 106u);
    return all;
  }
};

TEST_F(SearchFeedTest, LinksToItselfAndToItsWebPage) {
  const XmlElement feed = GetFeed("/search?q=%22a%26b%22+%3C&start=3");
  EXPECT_EQ(feed.Link("self"), emulator_.url() + "/search?q=%22a%26b%22%20%3C&start=3&count=12");
  EXPECT_EQ(feed.Link("alternate"),
            emulator_.url() + "/search.html?q=%22a%26b%22%20%3C&start=3&count=12");
  EXPECT_EQ(TitleOf(feed), "\"a&b\" <");
  EXPECT_EQ(feed.Child(Atom("id")).text, feed.Link("self"));
  for (const XmlElement* link : feed.Children(Atom("link"))) {
    EXPECT_EQ(link->Attribute("type"),
              link->Attribute("rel") == "alternate" ? "text/html" : "application/atom+xml");
  }
}

TEST_F(SearchFeedTest, EveryEntryIsComplete) {
  std::set<std::string> ids;
  for (const XmlElement& entry : AllEntries()) {
    const std::string id = entry.Child(Atom("id")).text;
    EXPECT_THAT(id, MatchesRegex("tag:content\\.stowra\\.example,2024:[cm]-[0-9]+"));
    EXPECT_TRUE(ids.insert(id).second) << id << " comes twice";
    EXPECT_THAT(TermOf(entry), AnyOf("http://schemas.stowra.example/stowra/2008#model",
                                     "http://schemas.stowra.example/stowra/2008#collection"));
    EXPECT_NE(TitleOf(entry), "") << id;
    EXPECT_NE(entry.Child(Atom("summary")).text, "") << id;
    EXPECT_THAT(entry.Child(Atom("updated")).text,
                MatchesRegex("2024-[01][0-9]-[0-2][0-9]T09:00:00Z"));
    for (const XmlElement* link : entry.Children(Atom("link"))) {
      EXPECT_NE(link->Attribute("rel"), "");
      EXPECT_THAT(link->Attribute("href"), StartsWith(emulator_.url() + "/"));
      EXPECT_NE(link->Attribute("type"), "");
    }
    const XmlElement& author = entry.Child(Atom("author"));
    EXPECT_NE(author.Child(Atom("name")).text, "");
    EXPECT_THAT(author.Child(Atom("uri")).text,
                StartsWith(emulator_.url() + "/search.html?uq=u-1"));
    for (const char* flag : {"dynamicComponent", "classifiedComponent"}) {
      EXPECT_THAT(entry.Child(Schema(flag)).text, AnyOf("true", "false"));
    }
  }
}

TEST_F(SearchFeedTest, EveryEntryHasASmallPicture) {
  for (const XmlElement& entry : AllEntries()) {
    std::vector<std::string> small;
    for (const XmlElement* picture : entry.Child(Media("group")).Children(Media("thumbnail"))) {
      const std::string address = picture->Attribute("url");
      if (RtypOf(address) == "st") small.push_back(address);
    }
    ASSERT_EQ(small.size(), 1u) << entry.Child(Atom("id")).text;
    EXPECT_EQ(Get(small[0]).Header("Content-Type"), "image/png");
  }
}

TEST_F(SearchFeedTest, EveryEntryLinksToItsPage) {
  for (const XmlElement& entry : AllEntries()) {
    const XmlElement page = GetPage(entry.Link("alternate"));
    EXPECT_EQ(page.Descendant("h1").text, TitleOf(entry));
  }
}

TEST_F(SearchFeedTest, UserQueryFindsTheAuthorsOtherWork) {
  const XmlElement feed = GetFeed("/search?q=oak+chair");
  ASSERT_EQ(Entries(feed).size(), 1u);
  const XmlElement others = GetFeed(Entries(feed)[0]->Link(kUserQuery) + "&count=100");
  EXPECT_EQ(Total(others), 25);
  EXPECT_THAT(Titles(others), Not(Contains("Oak Chair")));
  for (const XmlElement* other : Entries(others)) {
    EXPECT_EQ(other->Child(Atom("author")).Child(Atom("name")).text, "Zoë Ångström");
  }
}

TEST_F(SearchFeedTest, ModelsHaveDownloadsAndCollectionsHaveAFeed) {
  int collections = 0;
  for (const XmlElement& entry : AllEntries()) {
    const auto contents = entry.Children(Atom("content"));
    if (!IsCollection(entry)) {
      EXPECT_THAT(contents, IsEmpty());
      EXPECT_THAT(RenditionsOf(entry), Not(IsEmpty()));
      continue;
    }
    ++collections;
    EXPECT_THAT(RenditionsOf(entry), IsEmpty());
    ASSERT_EQ(contents.size(), 1u);
    EXPECT_EQ(contents[0]->Attribute("type"), "application/atom+xml");
    // Clients extend the address like this.
    const XmlElement feed = GetFeed(contents[0]->Attribute("src") + "&q=is:downloadable");
    EXPECT_GE(Total(feed), 10);
    EXPECT_EQ(Models(feed).size(),
              std::min<std::size_t>(12, static_cast<std::size_t>(Total(feed))));
  }
  EXPECT_EQ(collections, 6);
}

TEST_F(SearchFeedTest, SeedHasRenditionsOfEveryKind) {
  std::set<std::string> kinds;
  int only_kmz = 0;
  int no_kmz = 0;
  for (const XmlElement& entry : AllEntries()) {
    if (IsCollection(entry)) continue;
    const std::map<std::string, std::string> renditions = RenditionsOf(entry);
    for (const auto& [rtyp, type] : renditions) {
      kinds.insert(rtyp);
      EXPECT_THAT(rtyp, MatchesRegex("k2|z|s[0-9]*"));
      EXPECT_EQ(type, rtyp == "k2"  ? "application/vnd.pellamy.kmz"
                      : rtyp == "z" ? "application/zip"
                                    : kQmf);
    }
    if (renditions.count("k2") == 0) ++no_kmz;
    if (renditions.count("k2") == renditions.size()) ++only_kmz;
  }
  EXPECT_THAT(kinds, testing::IsSupersetOf({"s", "s6", "s7", "s8", "s9", "s12", "k2", "z"}));
  EXPECT_GT(only_kmz, 10);
  EXPECT_GT(no_kmz, 10);
}

TEST_F(SearchFeedTest, SetsFlagsOfSomeEntries) {
  std::map<std::string, int> count;
  for (const XmlElement& entry : AllEntries()) {
    for (const char* flag : {"dynamicComponent", "classifiedComponent"}) {
      if (entry.Child(Schema(flag)).text == "true") ++count[flag];
    }
  }
  EXPECT_EQ(count["dynamicComponent"], 34);
  EXPECT_EQ(count["classifiedComponent"], 25);
}

TEST_F(SearchFeedTest, SeedHasTitlesInManyScripts) {
  std::vector<std::string> titles;
  for (const XmlElement& entry : AllEntries()) titles.push_back(TitleOf(entry));
  EXPECT_EQ(std::set<std::string>(titles.begin(), titles.end()).size(), 106u);
  for (const char* title :
       {"Großer Eßtisch", "Étagère légère", "Λευκό σπίτι", "五重の塔", "سيارة حمراء",
        "🛏 Guest Bed", "Дом у реки", "Chair <No. 7> & Cushion", "Table 3/4 \"Duo\""}) {
    EXPECT_THAT(titles, Contains(title));
  }
}

TEST_F(SearchFeedTest, DropsCharactersThatXmlForbids) {
  const XmlElement feed = GetFeed("/search?q=a%00%01%1Fb%EF%BF%BE%FF%E2%82%ACc%0D%0A%09d");
  EXPECT_EQ(TitleOf(feed), "ab\uFFFD€c\r\n\td");
  EXPECT_EQ(GetFeed(feed.Link("self")).Link("self"), feed.Link("self"));
}

std::string SelfLink(Emulator& emulator, const std::string& headers) {
  const std::string request = "GET /search?q=nothing-like-it HTTP/1.1\r\n" + headers + "\r\n";
  return ParseXml(RawClient(emulator.port()).Ask(request).body).Link("self");
}

TEST_F(SearchFeedTest, AddressesBeginWithTheHostOfTheRequest) {
  const std::string rest = "/search?q=nothing-like-it&start=1&count=12";
  EXPECT_EQ(SelfLink(emulator_, "Host: models.example:81\r\n"), "http://models.example:81" + rest);
  EXPECT_EQ(SelfLink(emulator_, "Host: [::1]:8080\r\n"), "http://[::1]:8080" + rest);
  EXPECT_EQ(SelfLink(emulator_, "Host: a.example\r\nX-Forwarded-Proto: https\r\n"),
            "https://a.example" + rest);
  EXPECT_EQ(SelfLink(emulator_, "Host: a.example\r\nX-Forwarded-Proto: ftp\r\n"),
            "http://a.example" + rest);
  EXPECT_EQ(SelfLink(emulator_, "Host: a.example\r\nX-Forwarded-Host: b.example:81\r\n"),
            "http://b.example:81" + rest);
  EXPECT_EQ(SelfLink(emulator_, "Host: a.example\r\nX-Forwarded-Host: b c\r\n"),
            "http://a.example" + rest);
  for (const char* unusable :
       {"", "Host:\r\n", "Host: a b\r\n", "Host: a/b?c\r\n", "Host: \"<&\r\n"}) {
    EXPECT_EQ(SelfLink(emulator_, unusable), emulator_.url() + rest) << unusable;
  }
}

}  // namespace
}  // namespace stowra_emulator

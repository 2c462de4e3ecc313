// SPDX-License-Identifier: MIT
// Public collections of feeds, read by the operations alone.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/platform/xml/document.h"
#include "tests/support/corpora.h"

namespace stowra_test {
namespace {

using nlohmann::json;

const std::string kAtom = "http://www.w3.org/2005/Atom:";
const std::string kSearch = "http://a9.com/-/spec/opensearchrss/1.0/:";
const std::string kXhtml = "http://www.w3.org/1999/xhtml:";

struct Counts {
  int opened = 0;
  int refused = 0;
  int feeds = 0;
  int titles = 0;
  int titles_with_elements = 0;
  int links = 0;
  int entries = 0;
};

// "{uri}local" as the reader names it.
std::string NameOf(const std::string& root) {
  const std::size_t end = root.find('}');
  if (end == std::string::npos) return root;
  return root.substr(1, end - 1) + ":" + root.substr(end + 1);
}

// The text that a file of expectations gives, which keeps its white space.
std::optional<std::string> TextIn(const json& expected) {
  if (expected.is_null()) return std::nullopt;
  return Trimmed(expected.get<std::string>());
}

// Whether the first title has child elements. In the collections they are one of these two.
bool TitleHasElements(XmlDocument* document) {
  EXPECT_TRUE(document->Find(kAtom + "title"));
  const bool has_elements = document->Text(kXhtml + "div") || document->Text(kAtom + "p");
  EXPECT_TRUE(document->Leave(kAtom + "title"));
  return has_elements;
}

void CheckTitle(const json& expected, XmlDocument* document, Counts* counts) {
  const std::optional<std::string> title = document->Text(kAtom + "title");
  if (expected.is_null() && title) {
    EXPECT_TRUE(TitleHasElements(document));
    ++counts->titles_with_elements;
    return;
  }
  EXPECT_EQ(title, TextIn(expected));
  counts->titles += title ? 1 : 0;
}

// Calls `visit` at each child of that name. Returns how many there are.
int VisitEach(const std::string& name, XmlDocument* document, const std::function<void()>& visit) {
  int count = 0;
  if (!document->Find(name)) return count;
  do {
    ++count;
    visit();
  } while (document->Next(name));
  EXPECT_TRUE(document->Leave(name));
  return count;
}

void CheckLinks(const json& expected, XmlDocument* document, Counts* counts) {
  json links = json::array();
  counts->links += VisitEach(kAtom + "link", document, [&] {
    json link = json::object();
    for (const char* const name : {"rel", "href", "type"}) {
      if (const auto value = document->Attribute(name)) link[name] = *value;
    }
    links.push_back(link);
  });
  EXPECT_EQ(links, expected);
}

void CheckSearchCounts(const json& expected, XmlDocument* document) {
  const char* const names[] = {"totalResults", "startIndex", "itemsPerPage"};
  ASSERT_EQ(expected.size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) {
    const std::optional<std::string> text = TextIn(expected[i]);
    EXPECT_EQ(document->Text(kSearch + names[i]), text);
    EXPECT_EQ(document->Int(kSearch + names[i]).has_value(), text.has_value());
    if (text) {
      EXPECT_EQ(document->Int(kSearch + names[i]), std::stoi(*text));
    }
  }
}

void CheckFile(const std::filesystem::path& file, const json& expected, Counts* counts) {
  SCOPED_TRACE(file);
  XmlDocument document(ReadFile(file));
  ASSERT_EQ(document.is_open(), expected.at("expat_wellformed").get<bool>());
  if (!document.is_open()) {
    ++counts->refused;
    return;
  }
  ++counts->opened;
  const std::string root = NameOf(expected.at("root"));
  EXPECT_EQ(document.Find(kAtom + "feed"), root == kAtom + "feed");
  if (root != kAtom + "feed") {
    EXPECT_TRUE(document.Find(root));
    return;
  }
  ++counts->feeds;
  const int entries = VisitEach(kAtom + "entry", &document, [] {});
  EXPECT_EQ(entries, expected.at("entries").get<int>());
  counts->entries += entries;
  CheckSearchCounts(expected.at("opensearch"), &document);
  CheckLinks(expected.at("links"), &document, counts);
  CheckTitle(expected.at("feed_title"), &document, counts);
  EXPECT_TRUE(document.Leave(kAtom + "feed"));
}

Counts CheckCollection(const std::filesystem::path& folder) {
  Counts counts;
  const json expectations = json::parse(ReadFile(folder / "expected.json"));
  for (const auto& [name, expected] : expectations.items()) {
    CheckFile(folder / name, expected, &counts);
  }
  return counts;
}

TEST(XmlFeedCorpusTest, FeedparserTests) {
  SKIP_WITHOUT_CORPUS(folder, "feedparser-tests");
  const Counts counts = CheckCollection(folder);
  EXPECT_EQ(counts.opened, 551);
  EXPECT_EQ(counts.refused, 36);
  EXPECT_EQ(counts.feeds, 271);
  EXPECT_EQ(counts.titles_with_elements, 7);
  EXPECT_EQ(counts.titles, 271 - 7 - 252);
  EXPECT_GT(counts.entries, 100);
  EXPECT_GT(counts.links, 10);
}

TEST(XmlFeedCorpusTest, FeedValidatorTestCases) {
  SKIP_WITHOUT_CORPUS(folder, "feedvalidator-testcases");
  const Counts counts = CheckCollection(folder);
  EXPECT_EQ(counts.opened, 661);
  EXPECT_EQ(counts.refused, 10);
  EXPECT_EQ(counts.feeds, 555);
  EXPECT_EQ(counts.titles_with_elements, 1);
  EXPECT_EQ(counts.titles, 555 - 1 - 254);
  EXPECT_GT(counts.entries, 300);
  EXPECT_GT(counts.links, 300);
}

}  // namespace
}  // namespace stowra_test

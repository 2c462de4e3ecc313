// SPDX-License-Identifier: MIT
// Feeds of other projects, unchanged and with the title and counts that most of them lack.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <regex>
#include <string>

#include "tests/content/feed_text.h"
#include "tests/content/fields.h"
#include "tests/support/corpora.h"

namespace stowra_test {
namespace {

using nlohmann::json;

constexpr char kFeedRoot[] = "{http://www.w3.org/2005/Atom}feed";

bool IsFeed(const json& expected) {
  return expected.at("expat_wellformed") && expected.at("root") == kFeedRoot;
}

bool HasCounts(const json& expected) {
  const json& counts = expected.at("opensearch");
  return std::none_of(counts.begin(), counts.end(), [](const json& one) { return one.is_null(); });
}

// The last complete link of that relation and type. A missing attribute is absent or null.
std::string LastLink(const json& expected, const std::string& rel, const std::string& type) {
  const auto has = [](const json& link, const char* name) {
    return link.contains(name) && !link.at(name).is_null();
  };
  std::string href;
  for (const json& link : expected.at("links")) {
    if (!has(link, "rel") || !has(link, "href") || !has(link, "type")) continue;
    if (link.at("rel") == rel && link.at("type") == type) href = link.at("href");
  }
  return href;
}

void ExpectContents(const json& expected, const ContentQuery& query) {
  if (!expected.at("feed_title").is_null()) {
    EXPECT_EQ(query.title_.utf8(), Trimmed(expected.at("feed_title")));
  }
  EXPECT_EQ(query.self_url_.utf8(), LastLink(expected, "self", kAtom));
  EXPECT_EQ(query.next_url_.utf8(), LastLink(expected, "next", kAtom));
  EXPECT_EQ(query.previous_url_.utf8(), LastLink(expected, "previous", kAtom));
  EXPECT_EQ(query.html_url_.utf8(), LastLink(expected, "alternate", "text/html"));
  EXPECT_LE(query.items_.size(), expected.at("entries").get<std::size_t>());
}

// The feed with a title and the three counts added as its last children. Nothing if its end tag is
// not ASCII.
std::optional<std::string> WithTitleAndCounts(const std::string& document) {
  static const std::regex end_tag("</([A-Za-z0-9]+:)?feed\\s*>");
  std::sregex_iterator last(document.begin(), document.end(), end_tag);
  if (last == std::sregex_iterator()) return std::nullopt;
  for (auto next = last; next != std::sregex_iterator(); ++next) last = next;
  const auto end = static_cast<std::size_t>(last->position());
  const std::string uri = "xmlns='http://a9.com/-/spec/opensearchrss/1.0/'>";
  return document.substr(0, end) + "<title xmlns='http://www.w3.org/2005/Atom'>added</title>" +
         "<totalResults " + uri + "7</totalResults><startIndex " + uri +
         "8</startIndex><itemsPerPage " + uri + "9</itemsPerPage>" + document.substr(end);
}

struct Corpus {
  const char* name;
  std::size_t files;
  int complete;  // feeds that load as they are
  int feeds;     // that load with title and counts added
};

void PrintTo(const Corpus& corpus, std::ostream* out) { *out << corpus.name; }

class FeedCorpusTest : public testing::TestWithParam<Corpus> {};

TEST_P(FeedCorpusTest, EveryFileLoadsOrLeavesTheQueryEmpty) {
  SKIP_WITHOUT_CORPUS(folder, GetParam().name);
  const json expectations = json::parse(ReadFile(folder / "expected.json"));
  EXPECT_EQ(expectations.size(), GetParam().files);
  ContentQuery query;
  int loaded_feeds = 0;
  for (const auto& [file, expected] : expectations.items()) {
    SCOPED_TRACE(file);
    const bool loaded = LoadText(ReadFile(folder / file), query);
    if (!loaded) ExpectEmpty(query);
    const bool complete = IsFeed(expected) && HasCounts(expected);
    EXPECT_TRUE(complete || !loaded);
    if (!complete || expected.at("feed_title").is_null()) continue;
    ASSERT_TRUE(loaded);
    ++loaded_feeds;
    ExpectContents(expected, query);
    const json& counts = expected.at("opensearch");
    EXPECT_EQ(query.total_results_, std::stoi(counts[0].get<std::string>()));
    EXPECT_EQ(query.start_index_, std::stoi(counts[1].get<std::string>()));
    EXPECT_EQ(query.items_per_page_, std::stoi(counts[2].get<std::string>()));
  }
  EXPECT_EQ(loaded_feeds, GetParam().complete);
}

TEST_P(FeedCorpusTest, EveryFeedLoadsWithTitleAndCounts) {
  SKIP_WITHOUT_CORPUS(folder, GetParam().name);
  const json expectations = json::parse(ReadFile(folder / "expected.json"));
  ContentQuery query;
  int loaded_feeds = 0;
  for (const auto& [file, expected] : expectations.items()) {
    SCOPED_TRACE(file);
    const std::optional<std::string> document = WithTitleAndCounts(ReadFile(folder / file));
    if (!document) continue;
    const bool loaded = LoadText(*document, query);
    if (!loaded) ExpectEmpty(query);
    EXPECT_EQ(loaded, IsFeed(expected));
    if (!loaded || !IsFeed(expected)) continue;
    ++loaded_feeds;
    ExpectContents(expected, query);
    EXPECT_TRUE(HasCounts(expected) || query.total_results_ == 7) << query.total_results_;
  }
  EXPECT_EQ(loaded_feeds, GetParam().feeds);
}

INSTANTIATE_TEST_SUITE_P(Corpora, FeedCorpusTest,
                         testing::Values(Corpus{"feedparser-tests", 587, 1, 271},
                                         Corpus{"feedvalidator-testcases", 671, 0, 555}));

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
// Proves that what stowra check says of a feed is what the library makes of it.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "common_stowraapi/content/content_query.h"
#include "host/check/feed_check.h"
#include "tests/host/content_replies.h"
#include "tests/support/corpora.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::ContentItem;
using ovrant::stowraapiclient::ContentQuery;
using stowra::CheckedPart;
using stowra::CheckedRendition;
using stowra::CheckReport;
using stowra::Finding;

struct Totals {
  int documents = 0;
  int usable = 0;
  int entries = 0;
  int kept = 0;
  int differences = 0;
};

std::ostream& operator<<(std::ostream& out, const Totals& totals) {
  return out << totals.documents << " documents, " << totals.usable << " usable, " << totals.entries
             << " entries, " << totals.kept << " kept, " << totals.differences << " differences";
}

// A flag that cannot be read is lost, but drops nothing.
bool Drops(const Finding& finding) {
  return finding.is_loss && finding.text.find("; false kept") == std::string::npos;
}

bool HasReason(const std::vector<Finding>& findings) {
  return std::any_of(findings.begin(), findings.end(), Drops);
}

std::string ChosenUrl(const CheckedPart& part) {
  for (const CheckedRendition& rendition : part.renditions) {
    if (rendition.is_chosen) return rendition.url;
  }
  return {};
}

bool IsSame(const CheckedPart& part, const ContentItem& item) {
  std::map<std::string, std::string> said(part.values.begin(), part.values.end());
  const std::map<std::string, std::string> values = {
      {"id", item.id_.utf8()},
      {"summary", item.summary_.utf8()},
      {"author_name", item.author_name_.utf8()},
      {"author_uri", item.author_uri_.utf8()},
      {"author_id", item.author_id_.utf8()},
      {"html_url", item.html_url_.utf8()},
      {"user_query_url", item.user_query_url_.utf8()},
      {"thumbnail_url", item.thumbnail_url_.utf8()},
      {"download_url", item.download_url_.utf8()},
      {"collection_feed_url", item.collection_feed_url_.utf8()},
      {"kind", item.kind_ == 0 ? "model" : "collection"},
      {"dynamic_component", item.dynamic_component_ ? "true" : ""},
      {"classified_component", item.classified_component_ ? "true" : ""}};
  bool is_same = part.title == item.title_.utf8() && ChosenUrl(part) == item.download_url_.utf8();
  for (const auto& [name, value] : values) is_same = is_same && said[name] == value;
  return is_same;
}

void Compare(std::string document, int max_qmf_version, Totals& totals) {
  const CheckReport report = stowra::CheckFeed(document, max_qmf_version);
  ContentQuery query;
  query.max_qmf_version_ = max_qmf_version;
  const bool loaded = query.Load(reinterpret_cast<unsigned char*>(document.data()),
                                 static_cast<int>(document.size()));
  ++totals.documents;
  totals.usable += loaded ? 1 : 0;
  totals.differences += report.is_usable == loaded ? 0 : 1;
  totals.differences += HasReason(report.findings) == loaded ? 1 : 0;
  std::size_t kept = 0;
  for (const CheckedPart& part : report.parts) {
    ++totals.entries;
    if (loaded) totals.differences += HasReason(part.findings) == part.is_kept ? 1 : 0;
    if (!part.is_kept) continue;
    ++totals.kept;
    const bool same = kept < query.items_.size() && IsSame(part, *query.items_[kept]);
    totals.differences += same ? 0 : 1;
    ++kept;
  }
  totals.differences += kept == query.items_.size() ? 0 : 1;
}

// The document with what a feed needs, and with entries that the library knows, added at its end.
std::string Completed(const std::string& document) {
  static const std::regex end_tag("</([A-Za-z0-9]+:)?feed\\s*>");
  std::smatch end;
  if (!std::regex_search(document, end, end_tag)) return document;
  FeedText feed;
  feed.entries = {ModelEntry("m1", "Chair"), CollectionEntry("c1", "Chairs")};
  std::string inside = Feed(feed);
  inside = inside.substr(inside.find("?>") + 2);
  // As a feed of its own its children have their namespaces; they move one by one.
  const std::size_t begin = inside.find('>');
  const std::string namespaces = inside.substr(5, begin - 5);
  static const std::regex child("<(title|link|o:[A-Za-z]+|entry)([ >])");
  inside = inside.substr(begin + 1, inside.rfind("</feed>") - begin - 1);
  const std::string added = std::regex_replace(inside, child, "<$1" + namespaces + "$2");
  const auto at = static_cast<std::size_t>(end.position());
  return document.substr(0, at) + added + document.substr(at);
}

class CheckCorpusTest : public testing::TestWithParam<const char*> {};

TEST_P(CheckCorpusTest, SaysWhatTheLibraryDid) {
  SKIP_WITHOUT_CORPUS(folder, GetParam());
  Totals plain;
  Totals completed;
  for (const auto& file : std::filesystem::recursive_directory_iterator(folder)) {
    if (file.path().extension() != ".xml") continue;
    const std::string document = ReadFile(file.path());
    Compare(document, 8, plain);
    Compare(Completed(document), 8, completed);
  }
  std::cout << "as they are: " << plain << "\ncompleted: " << completed << "\n";
  EXPECT_EQ(plain.differences, 0);
  EXPECT_EQ(completed.differences, 0);
  EXPECT_GT(completed.kept, 0);
}

INSTANTIATE_TEST_SUITE_P(Corpora, CheckCorpusTest,
                         testing::Values("feedparser-tests", "feedvalidator-testcases"));

// Changes one place of the text: drops a part of an attribute or an element, or swaps a value.
std::string Mutated(std::string text, std::mt19937& random) {
  static const std::vector<std::pair<std::string, std::string>> changes = {
      {" rel=", " rol="},
      {" type=", " tipe="},
      {" href=", " hraf="},
      {" url=", " uri="},
      {" term=", " turm="},
      {" src=", " source="},
      {"<id>", "<id xmlns=''>"},
      {"<name>", "<name xmlns='x'>"},
      {"rtyp=k2", "rtyp=s9"},
      {"rtyp=s7", "rtyp=s"},
      {"rtyp=s7", "rtyp=s007"},
      {"rtyp=k2", "rtyp=s07"},
      {"rtyp=k2", "rtip=k2"},
      {"rtyp=s7", "rtyp=s0"},
      {"rtyp=s7", "rtyp=st"},
      {"brevix.qmf", "brevix.zip"},
      {"#model", "#collection"},
      {"atom+xml", "xml"},
      {">true<", ">yes<"},
      {">true<", "><"},
      {"<m:group>", "<m:group/><m:group>"},
      {"uq=", "uk="},
      {"rtyp=st", "rtyp=lt"},
      {"<title>", "<title xmlns='y'>"}};
  const auto& [from, to] = changes[random() % changes.size()];
  const std::size_t at = text.find(from);
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

TEST(CheckMutantsTest, SaysWhatTheLibraryDid) {
  std::mt19937 random(1);
  Totals totals;
  for (int i = 0; i < 500; ++i) {
    FeedText feed;
    for (int entry = 0; entry < 8; ++entry) {
      std::string text = random() % 2 == 0 ? ModelEntry("m", "Chair") : CollectionEntry("c", "All");
      for (auto count = random() % 4; count > 0; --count) text = Mutated(text, random);
      feed.entries.push_back(text);
    }
    Compare(Feed(feed), static_cast<int>(random() % 12), totals);
  }
  std::cout << totals << "\n";
  EXPECT_EQ(totals.differences, 0);
  EXPECT_EQ(totals.entries, 4000);
  EXPECT_GT(totals.kept, 1000);
  EXPECT_LT(totals.kept, 3500);
}

}  // namespace
}  // namespace stowra_test

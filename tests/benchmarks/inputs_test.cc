// SPDX-License-Identifier: MIT
#include "benchmarks/support/inputs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>

#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/json/document.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/services/update_query.h"

namespace stowra_test {
namespace {

using ovrant::json::Document;
using ovrant::stowraapiclient::ContentQuery;
using ovrant::utils::ovrant_ustring;
using ovrant::webservices::UpdateQuery;

ovrant_ustring Text(const std::string& utf8) { return ovrant_ustring(utf8.data(), utf8.size()); }

// FNV-1a.
std::uint64_t HashOf(const std::string& text) {
  std::uint64_t hash = 14695981039346656037U;
  for (const char byte : text) {
    hash ^= static_cast<unsigned char>(byte);
    hash *= 1099511628211U;
  }
  return hash;
}

bool IsAscii(const std::string& text) {
  return std::all_of(text.begin(), text.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

bool LoadFeed(std::string feed, ContentQuery& query) {
  query.max_qmf_version_ = 8;
  return query.Load(reinterpret_cast<unsigned char*>(feed.data()), static_cast<int>(feed.size()));
}

TEST(BenchmarkInputsTest, HaveSameBytesOnEveryMachine) {
  EXPECT_EQ(HashOf(stowra_bench::MakeUpdateResponse()), 0x7cd47abc30365014U);
  EXPECT_EQ(HashOf(stowra_bench::MakeExtensionStatus(200)), 0x3f0444e714bc134bU);
  EXPECT_EQ(HashOf(stowra_bench::MakeFeed(12)), 0x7637b4ee29563386U);
  EXPECT_EQ(HashOf(stowra_bench::MakeFeedOfLinks(20)), 0x89e4b266b4a9fab8U);
  EXPECT_EQ(HashOf(stowra_bench::MakeFlatObject(20)), 0x2c0b3ff07b550986U);
  EXPECT_EQ(HashOf(stowra_bench::MakeAsciiText(1000)), 0x7f8ad85531197c98U);
  EXPECT_EQ(HashOf(stowra_bench::MakeMixedText(1000)), 0x1b7936df569e9654U);
  EXPECT_EQ(HashOf(stowra_bench::MakeBytes(1000)), 0x7f3bffa7289cef33U);
}

TEST(BenchmarkInputsTest, HaveExpectedSizes) {
  EXPECT_NEAR(static_cast<double>(stowra_bench::MakeUpdateResponse().size()), 2048, 200);
  EXPECT_NEAR(static_cast<double>(stowra_bench::MakeExtensionStatus(20000).size()), 6e6, 5e5);
  EXPECT_NEAR(static_cast<double>(stowra_bench::MakeFeed(2000).size()), 5.5e6, 5e5);
  EXPECT_EQ(stowra_bench::MakeAsciiText(1000000).size(), 1000000U);
  EXPECT_EQ(stowra_bench::MakeMixedText(1000000).size(), 1000000U);
  EXPECT_EQ(stowra_bench::MakeBytes(12345).size(), 12345U);
}

TEST(BenchmarkInputsTest, UpdateResponseHasMessageAndDataFiles) {
  UpdateQuery query;
  ASSERT_TRUE(query.ParseResponse(Text(stowra_bench::MakeUpdateResponse())));
  EXPECT_EQ(query.message_.id, 4711);
  EXPECT_EQ(query.data_files_.size(), 12U);
}

TEST(BenchmarkInputsTest, ExtensionStatusHasRequestedNumberOfIds) {
  Document status;
  ASSERT_TRUE(status.Load(Text(stowra_bench::MakeExtensionStatus(200))));
  std::set<ovrant_ustring> ids;
  for (unsigned i = 0; i < status["extensions"].Size(); ++i) {
    const auto& extension = status["extensions"][i];
    ids.insert(extension["id"].GetString());
    EXPECT_TRUE(extension["version"].IsString());
    EXPECT_TRUE(extension["file_url"].IsString());
    EXPECT_TRUE(extension["update"].IsBool());
  }
  EXPECT_EQ(ids.size(), 200U);
}

TEST(BenchmarkInputsTest, FeedHasAllEntriesSomeCollectionsAndMixedScripts) {
  ContentQuery query;
  ASSERT_TRUE(LoadFeed(stowra_bench::MakeFeed(50), query));
  ASSERT_EQ(query.items_.size(), 50U);
  EXPECT_EQ(query.title_.utf8(), "chairs");
  EXPECT_EQ(query.total_results_, 50);
  const auto collections = std::count_if(query.items_.begin(), query.items_.end(),
                                         [](const auto* item) { return item->kind_ == 1; });
  EXPECT_GT(collections, 2);
  EXPECT_LT(collections, 25);
  std::string texts;
  for (const auto* item : query.items_) texts += item->title_.utf8() + item->summary_.utf8();
  EXPECT_FALSE(IsAscii(texts));
  EXPECT_NE(texts.find('&'), std::string::npos);
}

TEST(BenchmarkInputsTest, FeedOfLinksIsOneEntryWithAllLinks) {
  const std::string feed = stowra_bench::MakeFeedOfLinks(20);
  ContentQuery query;
  ASSERT_TRUE(LoadFeed(feed, query));
  EXPECT_EQ(query.items_.size(), 1U);
  std::size_t links = 0;
  for (auto at = feed.find("rel=\"related\""); at != std::string::npos;
       at = feed.find("rel=\"related\"", at + 1)) {
    ++links;
  }
  EXPECT_EQ(links, 20U);
}

TEST(BenchmarkInputsTest, FlatObjectHasRequestedNumberOfTextMembers) {
  Document object;
  ASSERT_TRUE(object.Load(Text(stowra_bench::MakeFlatObject(1000))));
  std::set<ovrant_ustring> names;
  for (unsigned i = 0; i < object.MemberCount(); ++i) {
    names.insert(object.MemberNameAt(i));
    EXPECT_TRUE(object.MemberAt(i).IsString());
  }
  EXPECT_EQ(names.size(), 1000U);
}

TEST(BenchmarkInputsTest, AsciiTextIsAsciiAndMixedTextIsUtf8) {
  EXPECT_TRUE(IsAscii(stowra_bench::MakeAsciiText(1000)));
  for (const std::size_t size : {1U, 7U, 100U, 1001U}) {
    const std::string text = stowra_bench::MakeMixedText(size);
    EXPECT_EQ(text.size(), size);
    EXPECT_EQ(Text(text).utf8(), text) << size;
  }
  EXPECT_FALSE(IsAscii(stowra_bench::MakeMixedText(1000)));
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include "benchmarks/support/inputs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>

#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/json/document.h"
#include "tests/support/text.h"

namespace stowra_test {
namespace {

using namespace stowra_bench;  // NOLINT(google-build-using-namespace)
using ovrant::json::Document;
using ovrant::stowraapiclient::ContentQuery;

// FNV-1a.
std::uint64_t HashOf(const std::string& text) {
  std::uint64_t hash = 14695981039346656037U;
  for (const char byte : text) hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211U;
  return hash;
}

bool IsAscii(const std::string& text) {
  return std::all_of(text.begin(), text.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

TEST(BenchmarkInputsTest, HaveSameBytesOnEveryMachine) {
  EXPECT_EQ(HashOf(MakeUpdateResponse()), 0x7cd47abc30365014U);
  EXPECT_EQ(HashOf(MakeExtensionStatus(200)), 0x3f0444e714bc134bU);
  EXPECT_EQ(HashOf(MakeFeed(12)), 0x7637b4ee29563386U);
  EXPECT_EQ(HashOf(MakeFeedOfLinks(20)), 0x89e4b266b4a9fab8U);
  EXPECT_EQ(HashOf(MakeFlatObject(20)), 0x2c0b3ff07b550986U);
  EXPECT_EQ(HashOf(MakeAsciiText(1000)), 0x7f8ad85531197c98U);
  EXPECT_EQ(HashOf(MakeMixedText(1000)), 0x1b7936df569e9654U);
  EXPECT_EQ(HashOf(MakeBytes(1000)), 0x7f3bffa7289cef33U);
}

TEST(BenchmarkInputsTest, HaveExpectedSizes) {
  EXPECT_NEAR(static_cast<double>(MakeUpdateResponse().size()), 2048, 200);
  EXPECT_NEAR(static_cast<double>(MakeExtensionStatus(20000).size()), 6e6, 5e5);
  EXPECT_NEAR(static_cast<double>(MakeFeed(2000).size()), 5.5e6, 5e5);
  EXPECT_EQ(MakeAsciiText(1000000).size(), 1000000U);
  EXPECT_EQ(MakeMixedText(1000000).size(), 1000000U);
  EXPECT_EQ(MakeBytes(12345).size(), 12345U);
}

TEST(BenchmarkInputsTest, FeedHasAllEntriesSomeCollectionsAndMixedScripts) {
  ContentQuery query;
  query.max_qmf_version_ = 8;
  Bytes feed(MakeFeed(50));
  ASSERT_TRUE(query.Load(feed.data(), feed.length()));
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

TEST(BenchmarkInputsTest, FlatObjectHasRequestedNumberOfTextMembers) {
  Document object;
  ASSERT_TRUE(object.Load(Text(MakeFlatObject(1000))));
  std::set<ovrant::utils::ovrant_ustring> names;
  for (unsigned i = 0; i < object.MemberCount(); ++i) {
    names.insert(object.MemberNameAt(i));
    EXPECT_TRUE(object.MemberAt(i).IsString());
  }
  EXPECT_EQ(names.size(), 1000U);
}

TEST(BenchmarkInputsTest, AsciiTextIsAsciiAndMixedTextIsUtf8) {
  EXPECT_TRUE(IsAscii(MakeAsciiText(1000)));
  for (const std::size_t size : {1U, 7U, 100U, 1001U}) {
    const std::string text = MakeMixedText(size);
    EXPECT_EQ(text.size(), size);
    EXPECT_EQ(Text(text).utf8(), text) << size;
  }
  EXPECT_FALSE(IsAscii(MakeMixedText(1000)));
}

}  // namespace
}  // namespace stowra_test

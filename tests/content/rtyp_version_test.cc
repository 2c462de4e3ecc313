// SPDX-License-Identifier: MIT
// ContentItem::ExtractQmfVersionFromRTypValue.

#include <gtest/gtest.h>

#include <climits>
#include <optional>
#include <string>
#include <utility>

#include "common_stowraapi/content/content_item.h"
#include "tests/content/feed_text.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::ContentItem;
using ovrant::utils::ovrant_ustring;

// The version, or nothing. In that case the caller's number is unchanged.
std::optional<int> VersionOf(const ovrant_ustring& value) {
  ContentItem item;
  int version = -77;
  if (item.ExtractQmfVersionFromRTypValue(value, version)) return version;
  EXPECT_EQ(version, -77);
  return std::nullopt;
}

TEST(RtypVersionTest, IsTheNumberBehindTheLetter) {
  const std::pair<const char*, int> values[] = {{"s7", 7}, {"s", 5},    {"s12", 12},
                                                {"s0", 0}, {"s007", 7}, {"s2147483647", INT_MAX}};
  for (const auto& [value, version] : values) EXPECT_EQ(VersionOf(value), version) << value;
}

TEST(RtypVersionTest, OtherTextsHaveNone) {
  for (const char* const value : {"", "st", "s7a", "sa7", "k2", "S7", "7", " s7", "s7 ", "s 7",
                                  "s-7", "s+7", "s7.", "ss", "s/", "s:",
                                  "\xC5\xB3"
                                  "7"}) {
    EXPECT_EQ(VersionOf(value), std::nullopt) << value;
  }
}

TEST(RtypVersionTest, OnlyAsciiDigitsAreDigits) {
  for (const char* const value :
       {"s\xC2\xB2", "s\xC2\xB9", "s\xD9\xA7", "s\xEF\xBC\x97", "s\xC4\xB7", "s7\xC4\xB7",
        "s\xF0\x9D\x9F\x97", "s1\xE3\x84\xB1"}) {
    EXPECT_EQ(VersionOf(value), std::nullopt) << value;
  }
  EXPECT_EQ(VersionOf(Text(std::string_view("s\0", 2))), std::nullopt);
  EXPECT_EQ(VersionOf(Text(std::string_view("s7\0", 3))), std::nullopt);
}

TEST(RtypVersionTest, BeyondThirtyTwoBitsIsZero) {
  for (const char* const value :
       {"s2147483648", "s4294967303", "s18446744073709551623", "s99999999999999999999999999"}) {
    EXPECT_EQ(VersionOf(value), 0) << value;
  }
}

TEST(RtypVersionTest, TakesTheTextByValue) {
  ContentItem item;
  const ovrant_ustring value = "s7";
  int version = 0;
  EXPECT_TRUE(item.ExtractQmfVersionFromRTypValue(value, version));
  EXPECT_EQ(value, "s7");
  EXPECT_EQ(item.id_, "");
  EXPECT_EQ(item.max_qmf_version_, 0);
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/header_text.h"

#include <gtest/gtest.h>

#include <string>

namespace stowra_test {
namespace {

using namespace ovrant::internet;  // NOLINT(google-build-using-namespace): free functions alone

TEST(HeaderText, TrimsBlanksOnBothSides) {
  EXPECT_EQ(TrimHeaderText(" \t a b\t\r\n"), "a b");
  EXPECT_EQ(TrimHeaderText("a"), "a");
  EXPECT_EQ(TrimHeaderText(""), "");
  EXPECT_EQ(TrimHeaderText(" \r\n\t"), "");
  EXPECT_EQ(TrimHeaderText("\va\f"), "\va\f");
}

TEST(HeaderText, ComparesIgnoringTheCaseOfAsciiLetters) {
  EXPECT_TRUE(EqualsIgnoringCase("Content-Type", "cONTENT-tYPE"));
  EXPECT_TRUE(EqualsIgnoringCase("", ""));
  EXPECT_TRUE(EqualsIgnoringCase("azAZ", "AZaz"));
  EXPECT_FALSE(EqualsIgnoringCase("a", "ab"));
  EXPECT_FALSE(EqualsIgnoringCase("ab", "a"));
  // They differ only in the case bit, but are not letters.
  EXPECT_FALSE(EqualsIgnoringCase("@", "`"));
  EXPECT_FALSE(EqualsIgnoringCase("[", "{"));
  EXPECT_FALSE(EqualsIgnoringCase("\xC4", "\xE4"));
}

TEST(HeaderText, FindsPrefixesIgnoringCase) {
  EXPECT_TRUE(StartsWithIgnoringCase("HTTPS://host", "https://"));
  EXPECT_TRUE(StartsWithIgnoringCase("abc", ""));
  EXPECT_TRUE(StartsWithIgnoringCase("abc", "ABC"));
  EXPECT_FALSE(StartsWithIgnoringCase("ab", "abc"));
  EXPECT_FALSE(StartsWithIgnoringCase("", "a"));
}

TEST(HeaderText, NamesAreTokens) {
  const std::string allowed =
      "!#$%&'*+-.^_`|~0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  EXPECT_TRUE(IsHeaderName(allowed));
  EXPECT_FALSE(IsHeaderName(""));
  for (int byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    EXPECT_EQ(IsHeaderName(std::string("X") + character),
              allowed.find(character) != std::string::npos)
        << byte;
  }
}

TEST(HeaderText, ValuesAllowNoControlCharacterButTab) {
  EXPECT_TRUE(IsHeaderValue(""));
  EXPECT_TRUE(IsHeaderValue("a\tb \"c\" \xC3\xA9"));
  for (int byte = 0; byte < 256; ++byte) {
    const bool is_control = (byte < 0x20 && byte != '\t') || byte == 0x7F;
    EXPECT_NE(IsHeaderValue(std::string("a") + static_cast<char>(byte) + "b"), is_control) << byte;
  }
}

}  // namespace
}  // namespace stowra_test

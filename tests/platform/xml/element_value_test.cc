// GetElementInt and GetElementBool.

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

std::optional<int> IntOf(const std::string& text) {
  XmlDocument document("<a><n>" + text + "</n><n>1</n></a>");
  EXPECT_TRUE(document.is_open()) << text;
  if (!document.is_open()) return std::nullopt;
  EXPECT_TRUE(document.Find("a"));
  return document.Int("n");
}

std::optional<bool> BoolOf(const std::string& text) {
  XmlDocument document("<a><n>" + text + "</n><n>true</n></a>");
  EXPECT_TRUE(document.is_open()) << text;
  if (!document.is_open()) return std::nullopt;
  EXPECT_TRUE(document.Find("a"));
  return document.Bool("n");
}

TEST(XmlElementIntTest, ReadsDecimalNumbers) {
  EXPECT_EQ(IntOf("0"), 0);
  EXPECT_EQ(IntOf("7"), 7);
  EXPECT_EQ(IntOf("1234567890"), 1234567890);
}

TEST(XmlElementIntTest, TakesOneSign) {
  EXPECT_EQ(IntOf("-5"), -5);
  EXPECT_EQ(IntOf("+5"), 5);
  EXPECT_EQ(IntOf("-0"), 0);
  EXPECT_EQ(IntOf("+0"), 0);
  for (const char* const text : {"--5", "++5", "+-5", "-+5", "- 5", "+ 5", "-", "+", "5-", "5+"}) {
    EXPECT_EQ(IntOf(text), std::nullopt) << text;
  }
}

TEST(XmlElementIntTest, FitsThirtyTwoBits) {
  EXPECT_EQ(IntOf("2147483647"), INT_MAX);
  EXPECT_EQ(IntOf("+2147483647"), INT_MAX);
  EXPECT_EQ(IntOf("-2147483647"), -INT_MAX);
  EXPECT_EQ(IntOf("-2147483648"), INT_MIN);
  for (const char* const text :
       {"2147483648", "-2147483649", "2147483650", "-2147483650", "4294967295", "4294967296",
        "4294967297", "9999999999", "-9999999999", "9223372036854775807", "9223372036854775808",
        "18446744073709551616", "18446744073709551617", "-18446744073709551615"}) {
    EXPECT_EQ(IntOf(text), std::nullopt) << text;
  }
  EXPECT_EQ(IntOf(std::string(1000, '9')), std::nullopt);
}

TEST(XmlElementIntTest, LeadingZerosDoNotCount) {
  EXPECT_EQ(IntOf("007"), 7);
  EXPECT_EQ(IntOf("-" + std::string(100, '0') + "2147483648"), INT_MIN);
  EXPECT_EQ(IntOf(std::string(100, '0')), 0);
}

TEST(XmlElementIntTest, WhiteSpaceAroundItDoesNotCount) {
  EXPECT_EQ(IntOf(" \t\r\n-42 \t\r\n"), -42);
  EXPECT_EQ(IntOf("&#32;&#13;42&#10;"), 42);
  EXPECT_EQ(IntOf("4 2"), std::nullopt);
  EXPECT_EQ(IntOf("\xC2\xA0"
                  "42"),
            std::nullopt);
}

TEST(XmlElementIntTest, AnyOtherTextIsAbsent) {
  for (const char* const text : {"", " ", "x", "1x", "x1", "1.0", "1.", "1,000", "1e3", "0x10",
                                 "1_000", "true", "NaN", "\xD9\xA3", "\xEF\xBC\x91", "1&#xA0;",
                                 "\xE2\x88\x92"
                                 "5"}) {
    EXPECT_EQ(IntOf(text), std::nullopt) << text;
  }
}

TEST(XmlElementIntTest, ReadsTheWholeTextOfTheElement) {
  EXPECT_EQ(IntOf("1<!-- c -->2<?p?><![CDATA[3]]>&#52;"), 1234);
  EXPECT_EQ(IntOf("1<b> </b>"), 1);
  EXPECT_EQ(IntOf("1<b>2</b>3"), 123);
  EXPECT_EQ(IntOf("<b>-</b>1"), -1);
  EXPECT_EQ(IntOf("1<b>x</b>"), std::nullopt);
}

TEST(XmlElementIntTest, AMissingChildIsAbsent) {
  XmlDocument document("<a><b><n>1</n></b></a>");
  ASSERT_TRUE(document.is_open());
  EXPECT_FALSE(document.Int("n"));
  ASSERT_TRUE(document.Find("a"));
  EXPECT_FALSE(document.Int("n"));
  EXPECT_EQ(document.Int("b"), 1);
}

TEST(XmlElementBoolTest, ReadsFourTexts) {
  EXPECT_EQ(BoolOf("true"), true);
  EXPECT_EQ(BoolOf("1"), true);
  EXPECT_EQ(BoolOf("false"), false);
  EXPECT_EQ(BoolOf("0"), false);
}

TEST(XmlElementBoolTest, WhiteSpaceAroundItDoesNotCount) {
  EXPECT_EQ(BoolOf(" \t\r\n true \n"), true);
  EXPECT_EQ(BoolOf("\n0\n"), false);
  EXPECT_EQ(BoolOf("tr ue"), std::nullopt);
}

TEST(XmlElementBoolTest, AnyOtherTextIsAbsent) {
  for (const char* const text :
       {"",    " ",   "TRUE",  "True",       "FALSE", "t",           "f",  "yes",
        "no",  "on",  "2",     "-1",         "+1",    "01",          "00", "10",
        "1.0", "tru", "truee", "true false", "0x1",   "\xEF\xBC\x91"}) {
    EXPECT_EQ(BoolOf(text), std::nullopt) << text;
  }
}

TEST(XmlElementBoolTest, ReadsTheWholeTextOfTheElement) {
  EXPECT_EQ(BoolOf("tr<!-- c --><![CDATA[ue]]>"), true);
  EXPECT_EQ(BoolOf("<b>fal</b>s<c>e</c>"), false);
  EXPECT_EQ(BoolOf("1<b>0</b>"), std::nullopt);
}

TEST(XmlElementBoolTest, AMissingChildIsAbsent) {
  XmlDocument document("<a><b><n>true</n></b></a>");
  ASSERT_TRUE(document.is_open());
  EXPECT_FALSE(document.Bool("n"));
  ASSERT_TRUE(document.Find("a"));
  EXPECT_FALSE(document.Bool("n"));
  EXPECT_EQ(document.Bool("b"), true);
}

}  // namespace
}  // namespace stowra_test

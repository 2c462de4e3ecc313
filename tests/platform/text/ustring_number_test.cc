// Reading numbers out of text.

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <string>

#include "common_stowraapi/platform/ustring.h"
#include "tests/platform/text/comma_locale.h"
#include "tests/platform/text/units.h"

namespace stowra_test {
namespace {

using ovrant::utils::ovrant_ustring;

TEST(UStringNumberTest, ReadsDecimalIntegers) {
  EXPECT_EQ(ovrant_ustring("0").to_int(), 0);
  EXPECT_EQ(ovrant_ustring("7").to_int(), 7);
  EXPECT_EQ(ovrant_ustring("12").to_int(), 12);
  EXPECT_EQ(ovrant_ustring("-42").to_int(), -42);
  EXPECT_EQ(ovrant_ustring("+42").to_int(), 42);
  EXPECT_EQ(ovrant_ustring("007").to_int(), 7);
  EXPECT_EQ(ovrant_ustring((std::string(10000, '0') + "9").c_str()).to_int(), 9);
}

TEST(UStringNumberTest, AllowsWhiteSpaceAroundNumbers) {
  EXPECT_EQ(ovrant_ustring(" \t\r\n\v\f12 \t\r\n\v\f").to_int(), 12);
  EXPECT_EQ(ovrant_ustring(" \t\r\n\v\f-1.5 \t\r\n\v\f").to_float(), -1.5f);
}

TEST(UStringNumberTest, ReadsIntegersUpToTheLimits) {
  EXPECT_EQ(ovrant_ustring("2147483647").to_int(), INT_MAX);
  EXPECT_EQ(ovrant_ustring("-2147483648").to_int(), INT_MIN);
}

TEST(UStringNumberTest, IntegersThatDoNotFitAreZero) {
  for (const char* text : {"2147483648", "-2147483649", "+2147483648", "4294967297",
                           "18446744073709551617", "99999999999999999999999999"}) {
    EXPECT_EQ(ovrant_ustring(text).to_int(), 0) << text;
  }
}

TEST(UStringNumberTest, TextThatIsNotAnIntegerIsZero) {
  for (const char* text : {"", " ", "-", "+", "+-1", "--1", "- 1", "1 2", "12a", "a12", "0x10",
                           "1.0", "1e3", "1,000", "\xD9\xA1", "\xEF\xBC\x91",
                           "\xC2\xA0"
                           "1"}) {
    EXPECT_EQ(ovrant_ustring(text).to_int(), 0) << text;
  }
  EXPECT_EQ(ovrant_ustring("1\0", 2).to_int(), 0);
  EXPECT_EQ(TextOf(u"\u0131").to_int(), 0);  // its low byte is '1'
}

TEST(UStringNumberTest, ReadsDecimalFloats) {
  EXPECT_EQ(ovrant_ustring("0").to_float(), 0.0f);
  EXPECT_EQ(ovrant_ustring("8.25").to_float(), 8.25f);
  EXPECT_EQ(ovrant_ustring("-0.5").to_float(), -0.5f);
  EXPECT_EQ(ovrant_ustring("+3").to_float(), 3.0f);
  EXPECT_EQ(ovrant_ustring(".5").to_float(), 0.5f);
  EXPECT_EQ(ovrant_ustring("5.").to_float(), 5.0f);
  EXPECT_EQ(ovrant_ustring("1e3").to_float(), 1000.0f);
  EXPECT_EQ(ovrant_ustring("25E-1").to_float(), 2.5f);
  EXPECT_EQ(ovrant_ustring("1e+2").to_float(), 100.0f);
}

TEST(UStringNumberTest, GivesTheNearestFloat) {
  EXPECT_EQ(ovrant_ustring("0.1").to_float(), 0.1f);
  EXPECT_EQ(ovrant_ustring("16777217").to_float(), 16777216.0f);  // a tie, to even
  EXPECT_EQ(ovrant_ustring("16777219").to_float(), 16777220.0f);
  // A little above a tie: rounding twice, by way of double, would go down.
  EXPECT_EQ(ovrant_ustring("16777217.0000000001").to_float(), 16777218.0f);
  EXPECT_EQ(ovrant_ustring(("0." + std::string(50, '0') + "1e51").c_str()).to_float(), 1.0f);
  EXPECT_EQ(ovrant_ustring(("1" + std::string(30, '0') + "e-30").c_str()).to_float(), 1.0f);
}

TEST(UStringNumberTest, ReadsFloatsUpToTheLimits) {
  EXPECT_EQ(ovrant_ustring("3.4028235e38").to_float(), FLT_MAX);
  EXPECT_EQ(ovrant_ustring("-3.4028235e38").to_float(), -FLT_MAX);
  EXPECT_EQ(ovrant_ustring("1.17549435e-38").to_float(), FLT_MIN);
  EXPECT_EQ(ovrant_ustring("1e-40").to_float(), 1e-40f);
  EXPECT_GT(ovrant_ustring("1e-40").to_float(), 0.0f);
}

TEST(UStringNumberTest, FloatsThatDoNotFitAreZero) {
  for (const char* text : {"3.5e38", "-3.5e38", "1e39", "1e999999999999", "1e-60", "-1e-999"}) {
    EXPECT_EQ(ovrant_ustring(text).to_float(), 0.0f) << text;
  }
}

TEST(UStringNumberTest, TextThatIsNotAFloatIsZero) {
  for (const char* text :
       {"",    " ",        "-",    "+",    ".",     "-.",    "e5",  ".e5",  "1e",
        "1e+", "1.2.3",    "1 .5", "- 1",  "+-1",   "0x1p3", "0x8", "inf",  "INF",
        "nan", "infinity", "1,5",  "1e5x", "1e5 5", "1e5.0", "1f",  "12abc"}) {
    EXPECT_EQ(ovrant_ustring(text).to_float(), 0.0f) << text;
  }
  EXPECT_EQ(ovrant_ustring("1\0", 2).to_float(), 0.0f);
  EXPECT_EQ(TextOf(u"\u0131").to_float(), 0.0f);
}

TEST(UStringNumberTest, IsIndependentOfTheLocale) {
  const CommaLocale locale;
  EXPECT_EQ(ovrant_ustring("1.5").to_float(), 1.5f);
  EXPECT_EQ(ovrant_ustring("1,5").to_float(), 0.0f);
  EXPECT_EQ(ovrant_ustring("1234567").to_int(), 1234567);
  EXPECT_EQ(ovrant_ustring("1.234.567").to_int(), 0);
  EXPECT_TRUE(CommaLocale::IsInForce());
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
// Reading numbers out of text.

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <string>
#include <utility>

#include "common_stowraapi/platform/ustring.h"
#include "tests/support/comma_locale.h"
#include "tests/support/text.h"

namespace stowra_test {
namespace {

TEST(UStringNumberTest, ReadsIntegers) {
  const std::pair<std::string, int> numbers[] = {{"0", 0},
                                                 {"7", 7},
                                                 {"12", 12},
                                                 {"-42", -42},
                                                 {"+42", 42},
                                                 {"007", 7},
                                                 {std::string(10000, '0') + "9", 9},
                                                 {" \t\r\n\v\f12 \t\r\n\v\f", 12},
                                                 {"2147483647", INT_MAX},
                                                 {"-2147483648", INT_MIN}};
  for (const auto& [text, number] : numbers) EXPECT_EQ(Text(text).to_int(), number) << text;
}

TEST(UStringNumberTest, IntegersThatDoNotFitAndOtherTextsAreZero) {
  for (const std::string& text :
       Split("2147483648|-2147483649|+2147483648|4294967297|18446744073709551617|"
             "99999999999999999999999999|| |-|+|+-1|--1|- 1|1 2|12a|a12|0x10|1.0|1e3|1,000|"
             "\xD9\xA1|\xEF\xBC\x91|\u00A01")) {
    EXPECT_EQ(Text(text).to_int(), 0) << text;
  }
  EXPECT_EQ(Text(std::string_view("1\0", 2)).to_int(), 0);
  EXPECT_EQ(TextOf(u"\u0131").to_int(), 0);  // its low byte is '1'
}

// 16777217 is a tie, which goes to even. A little above it, rounding twice by way of double would
// go down.
TEST(UStringNumberTest, ReadsTheNearestFloat) {
  const std::pair<std::string, float> numbers[] = {{"0", 0.0F},
                                                   {"8.25", 8.25F},
                                                   {"-0.5", -0.5F},
                                                   {"+3", 3.0F},
                                                   {".5", 0.5F},
                                                   {"5.", 5.0F},
                                                   {"1e3", 1000.0F},
                                                   {"25E-1", 2.5F},
                                                   {"1e+2", 100.0F},
                                                   {" \t\r\n\v\f-1.5 \t\r\n\v\f", -1.5F},
                                                   {"0.1", 0.1F},
                                                   {"16777217", 16777216.0F},
                                                   {"16777219", 16777220.0F},
                                                   {"16777217.0000000001", 16777218.0F},
                                                   {"0." + std::string(50, '0') + "1e51", 1.0F},
                                                   {"1" + std::string(30, '0') + "e-30", 1.0F},
                                                   {"3.4028235e38", FLT_MAX},
                                                   {"-3.4028235e38", -FLT_MAX},
                                                   {"1.17549435e-38", FLT_MIN},
                                                   {"1e-40", 1e-40F}};
  for (const auto& [text, number] : numbers) EXPECT_EQ(Text(text).to_float(), number) << text;
  EXPECT_GT(Text("1e-40").to_float(), 0.0F);
}

TEST(UStringNumberTest, FloatsThatDoNotFitAndOtherTextsAreZero) {
  for (const std::string& text : Split(
           "3.5e38|-3.5e38|1e39|1e999999999999|1e-60|-1e-999|| |-|+|.|-.|e5|.e5|1e|1e+|1.2.3|1 .5|"
           "- 1|+-1|0x1p3|0x8|inf|INF|nan|infinity|1,5|1e5x|1e5 5|1e5.0|1f|12abc")) {
    EXPECT_EQ(Text(text).to_float(), 0.0F) << text;
  }
  EXPECT_EQ(Text(std::string_view("1\0", 2)).to_float(), 0.0F);
  EXPECT_EQ(TextOf(u"\u0131").to_float(), 0.0F);
}

TEST(UStringNumberTest, IsIndependentOfTheLocale) {
  const CommaLocale locale;
  EXPECT_EQ(Text("1.5").to_float(), 1.5F);
  EXPECT_EQ(Text("1,5").to_float(), 0.0F);
  EXPECT_EQ(Text("1234567").to_int(), 1234567);
  EXPECT_EQ(Text("1.234.567").to_int(), 0);
  EXPECT_TRUE(CommaLocale::IsInForce());
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
// compare_nocase.

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "common_stowraapi/platform/ustring.h"
#include "tests/support/text.h"

namespace stowra_test {
namespace {

using ovrant::utils::ovrant_ustring;

int Sign(int value) { return (value > 0) - (value < 0); }

// Checks both directions.
void ExpectOrder(const ovrant_ustring& a, const ovrant_ustring& b, int sign) {
  EXPECT_EQ(Sign(a.compare_nocase(b)), sign) << a.utf8() << " against " << b.utf8();
  EXPECT_EQ(Sign(b.compare_nocase(a)), -sign) << b.utf8() << " against " << a.utf8();
}

TEST(UStringCaseTest, IgnoresTheCaseOfAllOfUnicode) {
  const std::pair<const char*, const char*> equal[] = {
      {"", ""},
      {"a", "A"},
      {"Content-TYPE", "content-type"},
      {"abcdefghijklmnopqrstuvwxyz", "ABCDEFGHIJKLMNOPQRSTUVWXYZ"},
      {"\xC3\x89T\xC3\x89", "\xC3\xA9t\xC3\xA9"},                // ÉTÉ
      {"\xD0\x96\xD0\xA3\xD0\x9A", "\xD0\xB6\xD1\x83\xD0\xBA"},  // ЖУК
      {"\xCE\xA3", "\xCF\x82"},                                  // both sigmas
      {"\xF0\x90\x90\x80", "\xF0\x90\x90\xA8"},                  // Deseret, pairs
      {"\xE1\x8E\xA0", "\xEA\xAD\xB0"},                          // Cherokee
      // More than one unit.
      {"Stra\u00DFe", "STRASSE"},
      {"\xE1\xBA\x9E", "ss"},                    // capital sharp s
      {"\xCE\x90", "\xCE\xB9\xCC\x88\xCC\x81"},  // iota with two marks
      {"\xEF\xAC\x83", "FFI"},                   // ligature
      {"\xC4\xB0", "i\xCC\x87"},                 // dotted capital I
      // ASCII.
      {"\xE2\x84\xAA", "k"},  // Kelvin sign
      {"\xE2\x84\xAA", "K"},
      {"mi\xC5\xBFs", "MISS"},  // long s
      // No language counts.
      {"I", "i"}};
  for (const auto& [a, b] : equal) ExpectOrder(a, b, 0);
  ExpectOrder(Text(std::string("A\0B", 3)), Text(std::string("a\0b", 3)), 0);
}

TEST(UStringCaseTest, OrdersByTheFoldedUnits) {
  const std::pair<const char*, const char*> ordered[] = {
      {"@", "`"},
      {"[", "{"},
      {"!", "1"},
      {"a", "B"},
      {"A", "b"},
      {"ab", "ABC"},
      {"", "a"},
      // "_" lies between the capital and the small letters. Letters compare as small ones.
      {"_", "Z"},
      {"Z", "\xC3\x89"},
      {"e", "\xC3\xA9"},
      {"s", "\xC3\x9F"},
      {"I", "\xC4\xB1"}};  // dotless i
  for (const auto& [less, greater] : ordered) ExpectOrder(less, greater, -1);
  ExpectOrder("a", Text(std::string("A\0B", 3)), -1);
}

TEST(UStringCaseTest, KeepsLoneSurrogates) {
  ExpectOrder(TextOf(u"x\xD801y"), TextOf(u"X\xD801Y"), 0);
  ExpectOrder(TextOf(u"\xDC00"), TextOf(u"\xDC01"), -1);
  // Apart, they are not the letter that they form together.
  ExpectOrder(TextOf(u"\xD801-\xDC00"), TextOf(u"\xD801-\xDC28"), -1);
}

// A surrogate pair, and a letter that folds to three units, far from the start.
TEST(UStringCaseTest, ComparesLongTexts) {
  for (int before = 50; before <= 70; ++before) {
    const std::string lead = "\xC3\xA9" + std::string(static_cast<std::size_t>(before), 'x');
    const std::string capital =
        lead + "\xF0\x90\x90\x80\xCE\x90" + std::string(600, 'Q') + "\xC3\x89";
    const std::string small =
        lead + "\xF0\x90\x90\xA8\xCE\xB9\xCC\x88\xCC\x81" + std::string(600, 'q') + "\xC3\xA9";
    ExpectOrder(capital.c_str(), small.c_str(), 0);
    ExpectOrder((capital + "a").c_str(), (small + "B").c_str(), -1);
    ExpectOrder((capital + "a").c_str(), small.c_str(), 1);
  }
}

}  // namespace
}  // namespace stowra_test

// compare_nocase.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/ustring.h"
#include "tests/platform/text/units.h"

namespace stowra_test {
namespace {

using ovrant::utils::ovrant_ustring;

int Sign(int value) { return (value > 0) - (value < 0); }

// Checks both directions.
void ExpectOrder(const ovrant_ustring& a, const ovrant_ustring& b, int sign) {
  EXPECT_EQ(Sign(a.compare_nocase(b)), sign) << a.utf8() << " against " << b.utf8();
  EXPECT_EQ(Sign(b.compare_nocase(a)), -sign) << b.utf8() << " against " << a.utf8();
}

TEST(UStringCaseTest, IgnoresTheCaseOfAscii) {
  ExpectOrder("", "", 0);
  ExpectOrder("a", "A", 0);
  ExpectOrder("Content-TYPE", "content-type", 0);
  ExpectOrder("abcdefghijklmnopqrstuvwxyz", "ABCDEFGHIJKLMNOPQRSTUVWXYZ", 0);
}

TEST(UStringCaseTest, ChangesOnlyLetters) {
  ExpectOrder("@", "`", -1);
  ExpectOrder("[", "{", -1);
  ExpectOrder("1", "!", 1);
}

TEST(UStringCaseTest, OrdersByTheFoldedUnits) {
  ExpectOrder("a", "B", -1);
  ExpectOrder("A", "b", -1);
  ExpectOrder("ab", "ABC", -1);
  ExpectOrder("", "a", -1);
  // "_" lies between the capital and the small letters. Letters compare as small ones.
  ExpectOrder("Z", "_", 1);
  ExpectOrder("Z", "\xC3\x89", -1);
}

TEST(UStringCaseTest, FoldsAllOfUnicode) {
  ExpectOrder("\xC3\x89T\xC3\x89", "\xC3\xA9t\xC3\xA9", 0);                // ÉTÉ
  ExpectOrder("\xD0\x96\xD0\xA3\xD0\x9A", "\xD0\xB6\xD1\x83\xD0\xBA", 0);  // ЖУК
  ExpectOrder("\xCE\xA3", "\xCF\x82", 0);                                  // both sigmas
  ExpectOrder("\xF0\x90\x90\x80", "\xF0\x90\x90\xA8", 0);                  // Deseret, pairs
  ExpectOrder("\xE1\x8E\xA0", "\xEA\xAD\xB0", 0);                          // Cherokee
  ExpectOrder("\xC3\xA9", "e", 1);
}

TEST(UStringCaseTest, FoldsToMoreThanOneUnit) {
  ExpectOrder(
      "Stra\xC3\x9F"
      "e",
      "STRASSE", 0);
  ExpectOrder("\xE1\xBA\x9E", "ss", 0);                    // capital sharp s
  ExpectOrder("\xCE\x90", "\xCE\xB9\xCC\x88\xCC\x81", 0);  // iota with two marks
  ExpectOrder("\xEF\xAC\x83", "FFI", 0);                   // ligature
  ExpectOrder("\xC4\xB0", "i\xCC\x87", 0);                 // dotted capital I
  ExpectOrder("\xC3\x9F", "s", 1);
}

TEST(UStringCaseTest, FoldsToAscii) {
  ExpectOrder("\xE2\x84\xAA", "k", 0);  // Kelvin sign
  ExpectOrder("\xE2\x84\xAA", "K", 0);
  ExpectOrder("mi\xC5\xBFs", "MISS", 0);  // long s
}

TEST(UStringCaseTest, DependsOnNoLanguage) {
  ExpectOrder("I", "i", 0);
  ExpectOrder("I", "\xC4\xB1", -1);  // dotless i
}

TEST(UStringCaseTest, KeepsLoneSurrogates) {
  ExpectOrder(TextOf(u"a\xD801"
                     u"b"),
              TextOf(u"A\xD801"
                     u"B"),
              0);
  ExpectOrder(TextOf(u"\xDC00"), TextOf(u"\xDC01"), -1);
  // Apart, they are not the letter that they form together.
  ExpectOrder(TextOf(u"\xD801-\xDC00"), TextOf(u"\xD801-\xDC28"), -1);
}

TEST(UStringCaseTest, ComparesNul) {
  ExpectOrder(ovrant_ustring("A\0B", 3), ovrant_ustring("a\0b", 3), 0);
  ExpectOrder(ovrant_ustring("A\0B", 3), "a", 1);
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

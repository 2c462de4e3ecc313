// SPDX-License-Identifier: MIT
// The text type, operation by operation. Conversion, case, numbers, overloads and Format have files
// of their own.

#include "common_stowraapi/platform/ustring.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/text.h"

namespace stowra_test {
namespace {

using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;
using testing::ElementsAre;

static_assert(std::is_nothrow_move_constructible_v<ovrant_ustring>);
static_assert(std::is_nothrow_move_assignable_v<ovrant_ustring>);
static_assert(std::is_same_v<decltype(ovrant_ustring().length()), unsigned long>);
static_assert(ovrant_ustring::npos == ULONG_MAX);

TEST(UStringTest, IsEmptyAtFirstAndWhenCleared) {
  ovrant_ustring cleared("abc");
  cleared.clear();
  for (const ovrant_ustring& text : {ovrant_ustring(), cleared}) {
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.length(), 0u);
    EXPECT_EQ(text.utf8(), "");
    EXPECT_TRUE(text.units().empty());
  }
}

TEST(UStringTest, TakesUtf8UpToItsNul) {
  const ovrant_ustring text("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\0zzz");
  EXPECT_EQ(UnitsOf(text), u"a\u00E9\u20AC\U0001F600");
  EXPECT_EQ(text.length(), 5u);
  EXPECT_FALSE(text.empty());
}

TEST(UStringTest, NullPointersAndLengthZeroGiveTheEmptyString) {
  const char* const null = nullptr;
  const wchar_t* const wide_null = nullptr;
  for (const ovrant_ustring& text :
       {ovrant_ustring(null), ovrant_ustring(wide_null), ovrant_ustring(null, 5),
        ovrant_ustring(null, 0), ovrant_ustring("abc", 0)}) {
    EXPECT_TRUE(text.empty());
  }
  ovrant_ustring text("abc");
  text = null;
  EXPECT_TRUE(text.empty());
  text = "abc";
  text.assign_utf8(null);
  EXPECT_TRUE(text.empty());
}

TEST(UStringTest, TakesWideTextAsUnicode) {
  EXPECT_EQ(UnitsOf(ovrant_ustring(L"Proxy-Connection")), u"Proxy-Connection");
  EXPECT_EQ(UnitsOf(ovrant_ustring(L"\u00E9\u20AC\U0001F600\U0010FFFF")),
            u"\u00E9\u20AC\U0001F600\U0010FFFF");
  EXPECT_TRUE(ovrant_ustring(L"").empty());
}

TEST(UStringTest, ReplacesInvalidWideValues) {
  if constexpr (sizeof(wchar_t) == 4) {
    const wchar_t wide[] = {L'a',
                            static_cast<wchar_t>(0xD83D),
                            static_cast<wchar_t>(0xDE00),
                            static_cast<wchar_t>(0x110000),
                            static_cast<wchar_t>(-1),
                            L'b',
                            0};
    EXPECT_EQ(UnitsOf(ovrant_ustring(wide)), u"a\uFFFD\uFFFD\uFFFD\uFFFDb");
  } else {
    const wchar_t wide[] = {L'a', static_cast<wchar_t>(0xD83D), L'b', 0};
    EXPECT_EQ(UnitsOf(ovrant_ustring(wide)), u"a\uFFFDb");
  }
}

TEST(UStringTest, CopiesAreIndependent) {
  ovrant_ustring original("original");
  ovrant_ustring copy(original);
  ovrant_ustring assigned;
  assigned = original;
  original[0] = u'O';
  original += "!";
  EXPECT_EQ(copy, "original");
  EXPECT_EQ(assigned, "original");
  EXPECT_EQ(original, "Original!");
}

TEST(UStringTest, MayBeAssignedToItself) {
  ovrant_ustring text("the same text, longer than a small buffer");
  const ovrant_ustring& alias = text;
  text = alias;
  EXPECT_EQ(text, "the same text, longer than a small buffer");
}

TEST(UStringTest, AssignsUtf8) {
  ovrant_ustring text("before");
  text = "\xC3\xA9t\xC3\xA9";
  EXPECT_EQ(UnitsOf(text), u"\u00E9t\u00E9");
  EXPECT_EQ(&text.assign_utf8("other"), &text);
  EXPECT_EQ(UnitsOf(text), u"other");
}

TEST(UStringTest, AssignsBytesThatLieInsideItself) {
  ovrant_ustring text(std::string(100, 'x').c_str());
  for (unsigned long i = 0; i < 4; ++i) text[i] = u'A' + u'B' * 0x100;
  text[4] = 0;
  const std::string expected(reinterpret_cast<const char*>(&text[0]));
  ASSERT_EQ(expected.size(), 8u);
  text.assign_utf8(reinterpret_cast<const char*>(&text[0]));
  EXPECT_EQ(text.utf8(), expected);
}

TEST(UStringTest, LongAsciiHasRoomForPadding) {
  for (const std::size_t size : {513u, 2048u, 2049u, 5000u}) {
    const std::string utf8 = ovrant_ustring(std::string(size, 'a')).utf8();
    EXPECT_GE(utf8.capacity(), utf8.size() + 16);
  }
}

TEST(UStringTest, AppendsItself) {
  ovrant_ustring text("twice, and longer than a small buffer; ");
  text += text;
  EXPECT_EQ(text, "twice, and longer than a small buffer; twice, and longer than a small buffer; ");
}

TEST(UStringTest, IndexesCodeUnits) {
  ovrant_ustring text("a\xF0\x9F\x98\x80z");
  EXPECT_EQ(text.at(0), u'a');
  EXPECT_EQ(text.at(1), 0xD83D);
  EXPECT_EQ(text.at(2), 0xDE00);
  EXPECT_EQ(text.at(3), u'z');
  text[0] = u'A';
  EXPECT_EQ(text[0], u'A');
  EXPECT_EQ(text.utf8(), "A\xF0\x9F\x98\x80z");
}

static_assert(static_cast<std::uint32_t>(ovrant_ustring::npos) == 0xFFFFFFFFU);

TEST(UStringTest, FindAgreesWithASearchUnitByUnit) {
  std::mt19937 random(7);
  for (int round = 0; round < 20'000; ++round) {
    // Few letters, one of which has a byte of another: many near misses.
    const auto make = [&](std::size_t limit) {
      std::u16string units;
      for (std::size_t left = random() % limit; left > 0; --left)
        units += u"ab\u6162"[random() % 3];
      return units;
    };
    const std::u16string whole = make(40);
    const std::u16string part = make(5);
    const std::size_t start = random() % 50 == 0 ? ULONG_MAX : random() % 42;
    const std::size_t expected = whole.find(part, start);
    EXPECT_EQ(TextOf(whole).find(TextOf(part), start),
              expected == std::u16string::npos ? ovrant_ustring::npos : expected)
        << round;
  }
}

TEST(UStringTest, PartsAreClampedToTheString) {
  const struct {
    int start;
    int count;
    const char* left;
    const char* mid;
    const char* right;
  } parts[] = {{2, 4, "abcd", "cdef", "cdef"},
               {0, 6, "abcdef", "abcdef", "abcdef"},
               {3, 2, "ab", "de", "ef"},
               {6, 0, "", "", ""},
               {1, 0, "", "", ""},
               {6, 1, "a", "", "f"},
               {1, 7, "abcdef", "bcdef", "abcdef"},
               {1, INT_MAX, "abcdef", "bcdef", "abcdef"},
               {0, -1, "", "", ""},
               {0, INT_MIN, "", "", ""},
               {-1, 2, "ab", "", "ef"},
               {INT_MIN, 2, "ab", "", "ef"},
               {-1, -1, "", "", ""},
               {INT_MIN, INT_MIN, "", "", ""},
               {7, 1, "a", "", "f"},
               {INT_MAX, INT_MAX, "abcdef", "", "abcdef"}};
  const ovrant_ustring text("abcdef");
  for (const auto& [start, count, left, mid, right] : parts) {
    EXPECT_EQ(text.Left(count), left) << count;
    EXPECT_EQ(text.Mid(start, count), mid) << start << ' ' << count;
    EXPECT_EQ(text.Right(count), right) << count;
  }
}

TEST(UStringTest, ComparesByCodeUnit) {
  // U+10000 is D800 DC00, so below U+FFFF though its code point is above.
  const std::pair<const char*, const char*> ordered[] = {{"A", "a"},      {"ab", "abc"},
                                                         {"abc", "b"},    {"", "a"},
                                                         {"z", "\u00E9"}, {"\U00010000", "\uFFFF"}};
  for (const auto& [less, greater] : ordered) {
    EXPECT_LT(ovrant_ustring(less).compare(greater), 0) << less;
    EXPECT_GT(ovrant_ustring(greater).compare(less), 0) << less;
    EXPECT_EQ(ovrant_ustring(less).compare(less), 0) << less;
    EXPECT_TRUE(ovrant_ustring(less) < greater && !(ovrant_ustring(greater) < less));
    EXPECT_TRUE(ovrant_ustring(less) != greater && !(ovrant_ustring(less) != less));
    EXPECT_TRUE(ovrant_ustring(less) == less && !(ovrant_ustring(less) == greater));
  }
}

TEST(UStringTest, TheFirstDifferenceDecides) {
  for (std::size_t length = 1; length <= 40; ++length) {
    const ovrant_ustring text(std::string(length, 'm').c_str());
    EXPECT_EQ(text.compare(std::string(length, 'm').c_str()), 0);
    EXPECT_GT(text.compare(std::string(length - 1, 'm').c_str()), 0);
    for (std::size_t at = 0; at < length; ++at) {
      // The whole unit decides, not one of its bytes nor what follows it.
      for (const char16_t unit : {u'l', u'n', u'\x0100', u'\x01FF', u'\xFF00'}) {
        ovrant_ustring other = text;
        other[at] = unit;
        if (at + 1 < length) other[length - 1] = unit < u'm' ? u'z' : u'a';
        EXPECT_EQ(text.compare(other) < 0, u'm' < unit) << length << ' ' << at;
        EXPECT_EQ(other.compare(text) < 0, unit < u'm') << length << ' ' << at;
        EXPECT_NE(text.compare(other), 0) << length << ' ' << at;
      }
    }
  }
}

TEST(UStringTest, OrdersAMapByCodeUnit) {
  const StringMap map{{"b", "1"}, {"a", "2"}, {"B", "3"}, {"\xC3\xA9", "4"}};
  std::vector<std::string> keys;
  for (const auto& entry : map) keys.push_back(entry.first.utf8());
  EXPECT_THAT(keys, ElementsAre("B", "a", "b", "\xC3\xA9"));
}

TEST(UStringTest, ReplacesFromTheLeftWithoutOverlap) {
  const struct {
    const char* before;
    const char* from;
    const char* to;
    const char* after;
  } replacements[] = {{"a-b-c", "-", "--", "a--b--c"}, {"a--b--c", "--", "", "abc"},
                      {"abc", "abc", "x", "x"},        {"x", "y", "z", "x"},
                      {"aaaaa", "aa", "b", "bba"},     {"aXa", "X", "XX", "aXXa"},
                      {"abc", "", "x", "abc"},         {"", "", "x", ""}};
  for (const auto& [before, from, to, after] : replacements) {
    ovrant_ustring text(before);
    text.replace_all(from, to);
    EXPECT_EQ(text, after) << before << from;
  }
}

TEST(UStringTest, ReplacesWithItselfAsArgument) {
  ovrant_ustring text("ab");
  text.replace_all("b", text);
  EXPECT_EQ(text, "aab");
  text.replace_all(text, "c");
  EXPECT_EQ(text, "c");
  text.replace_all(text, text);
  EXPECT_EQ(text, "c");
}

TEST(UStringTest, SplitsAtEachDelimiterAndKeepsEmptyTokens) {
  const struct {
    const char* text;
    const char* delimiters;
    const char* tokens;  // separated by "|"
  } splits[] = {{"http://x/u?name=a&task=&b", "&?", "http://x/u|name=a|task=|b"},
                {"&a&&?b&", "&?", "|a|||b|"},
                {"&", "&", "|"},
                {"abc", "&?", "abc"},
                {"abc", "", "abc"},
                {"", "&", ""},
                // The two units of one character are two delimiters.
                {"a\xF0\x9F\x98\x80z", "\xF0\x9F\x98\x80", "a||z"}};
  for (const auto& [text, delimiters, tokens] : splits) {
    std::vector<std::string> split;
    for (const auto& token : ovrant_ustring(text).TokenizeToVector(delimiters)) {
      split.push_back(token.utf8());
    }
    EXPECT_EQ(split, Split(tokens)) << text;
  }
}

TEST(UStringTest, NulIsAUnitLikeAnyOther) {
  ovrant_ustring text("a\0b", 3);
  EXPECT_EQ(text.find(ovrant_ustring("\0", 1), 0), 1u);
  EXPECT_NE(text, "a");
  EXPECT_LT(text.compare("aa"), 0);
  EXPECT_THAT(text.TokenizeToVector(ovrant_ustring("\0", 1)), ElementsAre("a", "b"));
  text.replace_all(ovrant_ustring("\0", 1), "-");
  EXPECT_EQ(text, "a-b");
}

}  // namespace
}  // namespace stowra_test

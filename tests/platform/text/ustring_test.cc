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

#include "tests/platform/text/units.h"

namespace stowra_test {
namespace {

using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;
using testing::ElementsAre;

static_assert(std::is_nothrow_move_constructible_v<ovrant_ustring>);
static_assert(std::is_nothrow_move_assignable_v<ovrant_ustring>);
static_assert(std::is_same_v<decltype(ovrant_ustring().length()), unsigned long>);
static_assert(ovrant_ustring::npos == ULONG_MAX);

TEST(UStringTest, IsEmptyAtFirst) {
  const ovrant_ustring text;
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(text.length(), 0u);
  EXPECT_EQ(text.utf8(), "");
}

TEST(UStringTest, TakesUtf8UpToItsNul) {
  const ovrant_ustring text("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\0zzz");
  EXPECT_EQ(UnitsOf(text), u"a\u00E9\u20AC\U0001F600");
  EXPECT_EQ(text.length(), 5u);
  EXPECT_FALSE(text.empty());
}

TEST(UStringTest, TakesBytesOfAnExplicitLengthWithoutTerminator) {
  const std::vector<char> bytes{'a', '\0', 'b', '\xC3', '\xA9'};
  const ovrant_ustring text(bytes.data(), bytes.size());
  EXPECT_EQ(UnitsOf(text), std::u16string(u"a\0b\u00E9", 4));
  EXPECT_EQ(text.utf8(), std::string("a\0b\xC3\xA9", 5));
}

TEST(UStringTest, LengthZeroGivesTheEmptyString) {
  EXPECT_TRUE(ovrant_ustring(static_cast<const char*>(nullptr), 0).empty());
  EXPECT_TRUE(ovrant_ustring("abc", 0).empty());
}

TEST(UStringTest, NullPointersGiveTheEmptyString) {
  EXPECT_TRUE(ovrant_ustring(static_cast<const char*>(nullptr)).empty());
  EXPECT_TRUE(ovrant_ustring(static_cast<const wchar_t*>(nullptr)).empty());
  EXPECT_TRUE(ovrant_ustring(static_cast<const char*>(nullptr), 5).empty());
  ovrant_ustring text("abc");
  text = static_cast<const char*>(nullptr);
  EXPECT_TRUE(text.empty());
  text = "abc";
  text.assign_utf8(nullptr);
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

TEST(UStringTest, MovesItsContent) {
  ovrant_ustring source("a text, longer than a small buffer");
  ovrant_ustring target(std::move(source));
  EXPECT_EQ(target, "a text, longer than a small buffer");
  ovrant_ustring assigned("other");
  assigned = std::move(target);
  EXPECT_EQ(assigned, "a text, longer than a small buffer");
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

TEST(UStringTest, ClearEmpties) {
  ovrant_ustring text("abc");
  text.clear();
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(text.length(), 0u);
}

TEST(UStringTest, Appends) {
  ovrant_ustring text("ab");
  EXPECT_EQ(&(text += ovrant_ustring("cd")), &text);
  text += "";
  text += "\xC3\xA9";
  EXPECT_EQ(UnitsOf(text), u"abcd\u00E9");
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

TEST(UStringTest, FindsTheFirstOccurrenceAtOrAfterTheStart) {
  const ovrant_ustring text("mid=1&mid=2");
  EXPECT_EQ(text.find("mid=", 0), 0u);
  EXPECT_EQ(text.find("mid=", 1), 6u);
  EXPECT_EQ(text.find("mid=", 6), 6u);
  EXPECT_EQ(text.find("2", 10), 10u);
  EXPECT_EQ(ovrant_ustring("\xF0\x9F\x98\x80x").find("x", 0), 2u);
}

TEST(UStringTest, FindOfAnAbsentTextHasAllBitsSet) {
  const ovrant_ustring text("abc");
  for (const unsigned long start : {0ul, 1ul, 3ul, 4ul, ULONG_MAX}) {
    const unsigned long found = text.find("x", start);
    EXPECT_EQ(found, ovrant_ustring::npos);
    EXPECT_EQ(static_cast<std::uint32_t>(found), 0xFFFFFFFFu);
  }
  EXPECT_EQ(text.find("ab", 1), ovrant_ustring::npos);
  EXPECT_EQ(text.find("abcd", 0), ovrant_ustring::npos);
  EXPECT_EQ(ovrant_ustring().find("a", 0), ovrant_ustring::npos);
}

TEST(UStringTest, FindsTheEmptyTextAtTheStart) {
  const ovrant_ustring text("abc");
  EXPECT_EQ(text.find("", 0), 0u);
  EXPECT_EQ(text.find("", 2), 2u);
  EXPECT_EQ(text.find("", 3), 3u);
  EXPECT_EQ(text.find("", 4), ovrant_ustring::npos);
  EXPECT_EQ(ovrant_ustring().find("", 0), 0u);
}

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
    const std::size_t start = random() % 42;
    const std::size_t expected = whole.find(part, start);
    EXPECT_EQ(TextOf(whole).find(TextOf(part), start),
              expected == std::u16string::npos ? ovrant_ustring::npos : expected)
        << round;
  }
}

TEST(UStringTest, LeftMidAndRightGiveParts) {
  const ovrant_ustring text("filename.qmf");
  EXPECT_EQ(text.Left(4), "file");
  EXPECT_EQ(text.Mid(4, 4), "name");
  EXPECT_EQ(text.Right(3), "qmf");
  EXPECT_EQ(text.Right(static_cast<int>(text.length()) - 1), "ilename.qmf");
}

TEST(UStringTest, MidUpToTheEndGivesTheWholeTail) {
  const ovrant_ustring text("abcdef");
  EXPECT_EQ(text.Mid(2, 4), "cdef");
  EXPECT_EQ(text.Mid(0, 6), "abcdef");
  EXPECT_EQ(text.Mid(6, 0), "");
}

TEST(UStringTest, PartsAreClampedToTheString) {
  const ovrant_ustring text("abc");
  EXPECT_EQ(text.Left(4), "abc");
  EXPECT_EQ(text.Left(INT_MAX), "abc");
  EXPECT_EQ(text.Right(4), "abc");
  EXPECT_EQ(text.Right(INT_MAX), "abc");
  EXPECT_EQ(text.Mid(1, INT_MAX), "bc");
  EXPECT_EQ(text.Mid(3, 1), "");
  EXPECT_EQ(text.Left(0), "");
  EXPECT_EQ(text.Right(0), "");
  EXPECT_EQ(text.Mid(1, 0), "");
}

TEST(UStringTest, NegativeCountsAndStartsOutsideGiveTheEmptyString) {
  const ovrant_ustring text("abc");
  for (const int negative : {-1, INT_MIN}) {
    EXPECT_EQ(text.Left(negative), "");
    EXPECT_EQ(text.Right(negative), "");
    EXPECT_EQ(text.Mid(0, negative), "");
    EXPECT_EQ(text.Mid(negative, 2), "");
    EXPECT_EQ(text.Mid(negative, negative), "");
  }
  EXPECT_EQ(text.Mid(4, 1), "");
  EXPECT_EQ(text.Mid(INT_MAX, INT_MAX), "");
}

TEST(UStringTest, ComparesByCodeUnit) {
  EXPECT_LT(ovrant_ustring("A").compare("a"), 0);
  EXPECT_GT(ovrant_ustring("a").compare("A"), 0);
  EXPECT_EQ(ovrant_ustring("a").compare("a"), 0);
  EXPECT_LT(ovrant_ustring("ab").compare("abc"), 0);
  EXPECT_GT(ovrant_ustring("b").compare("abc"), 0);
  EXPECT_LT(ovrant_ustring("").compare("a"), 0);
  EXPECT_LT(ovrant_ustring("z").compare("\xC3\xA9"), 0);
  // U+10000 is D800 DC00, so below U+FFFF though its code point is above.
  EXPECT_LT(ovrant_ustring("\xF0\x90\x80\x80").compare("\xEF\xBF\xBF"), 0);
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

TEST(UStringTest, OperatorsFollowCompare) {
  const ovrant_ustring a("a");
  const ovrant_ustring b("b");
  EXPECT_TRUE(a == ovrant_ustring("a"));
  EXPECT_FALSE(a == b);
  EXPECT_TRUE(a != b);
  EXPECT_FALSE(a != ovrant_ustring("a"));
  EXPECT_TRUE(a < b);
  EXPECT_FALSE(b < a);
  EXPECT_FALSE(a < ovrant_ustring("a"));
  EXPECT_TRUE(ovrant_ustring("B") < a);
}

TEST(UStringTest, OrdersAMapByCodeUnit) {
  const StringMap map{{"b", "1"}, {"a", "2"}, {"B", "3"}, {"\xC3\xA9", "4"}};
  std::vector<std::string> keys;
  for (const auto& entry : map) keys.push_back(entry.first.utf8());
  EXPECT_THAT(keys, ElementsAre("B", "a", "b", "\xC3\xA9"));
}

TEST(UStringTest, PlusAppendsToACopy) {
  const ovrant_ustring left("feed");
  const ovrant_ustring sum = left + "&q=\xC3\xA9";
  EXPECT_EQ(UnitsOf(sum), u"feed&q=\u00E9");
  EXPECT_EQ(left, "feed");
  EXPECT_EQ(left + "", "feed");
}

TEST(UStringTest, ReplacesEveryOccurrence) {
  ovrant_ustring text("a-b-c");
  text.replace_all("-", "--");
  EXPECT_EQ(text, "a--b--c");
  text.replace_all("--", "");
  EXPECT_EQ(text, "abc");
  text.replace_all("abc", "x");
  EXPECT_EQ(text, "x");
  text.replace_all("y", "z");
  EXPECT_EQ(text, "x");
}

TEST(UStringTest, ReplacesFromTheLeftWithoutOverlap) {
  ovrant_ustring text("aaaaa");
  text.replace_all("aa", "b");
  EXPECT_EQ(text, "bba");
  text = "aXa";
  text.replace_all("X", "XX");
  EXPECT_EQ(text, "aXXa");
}

TEST(UStringTest, ReplacingTheEmptyTextDoesNothing) {
  ovrant_ustring text("abc");
  text.replace_all("", "x");
  EXPECT_EQ(text, "abc");
  text.clear();
  text.replace_all("", "x");
  EXPECT_EQ(text, "");
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
  EXPECT_THAT(ovrant_ustring("http://x/u?name=a&task=&b").TokenizeToVector("&?"),
              ElementsAre("http://x/u", "name=a", "task=", "b"));
  EXPECT_THAT(ovrant_ustring("&a&&?b&").TokenizeToVector("&?"),
              ElementsAre("", "a", "", "", "b", ""));
  EXPECT_THAT(ovrant_ustring("&").TokenizeToVector("&"), ElementsAre("", ""));
}

TEST(UStringTest, WithoutADelimiterGivesOneToken) {
  EXPECT_THAT(ovrant_ustring("abc").TokenizeToVector("&?"), ElementsAre("abc"));
  EXPECT_THAT(ovrant_ustring("abc").TokenizeToVector(""), ElementsAre("abc"));
  EXPECT_THAT(ovrant_ustring().TokenizeToVector("&"), ElementsAre(""));
}

TEST(UStringTest, SplitsAtCodeUnits) {
  // The two units of one character are two delimiters.
  EXPECT_THAT(TextOf(u"a\U0001F600b").TokenizeToVector(TextOf(u"\U0001F600")),
              ElementsAre("a", "", "b"));
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

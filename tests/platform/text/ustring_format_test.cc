// SPDX-License-Identifier: MIT
// Format: first against the C library, then what it promises beyond that.

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "common_stowraapi/platform/ustring.h"
#include "tests/support/comma_locale.h"
#include "tests/support/text.h"

namespace stowra_test {
namespace {

using ovrant::utils::ovrant_ustring;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

template <typename... Args>
ovrant_ustring Formatted(const ovrant_ustring& format, Args... args) {
  ovrant_ustring text("what was there before");
  text.Format(format, args...);
  return text;
}

// What the C library writes. The arguments have the types that the format names.
template <typename... Args>
std::string Printed(const std::string& format, Args... args) {
  char text[1000];
  std::snprintf(text, sizeof(text), format.c_str(), args...);
  return text;
}

// Every combination of flags, width and precision before `conversion`.
std::vector<std::string> FormatsOf(const std::string& conversion) {
  std::vector<std::string> formats;
  for (unsigned flags = 0; flags < 32; ++flags) {
    std::string start = "<%";
    for (unsigned bit = 0; bit < 5; ++bit) {
      if ((flags >> bit & 1) != 0) start += "-+ #0"[bit];
    }
    for (const char* width : {"", "1", "9", "25"}) {
      for (const char* precision : {"", ".", ".0", ".1", ".4", ".12"}) {
        formats.push_back(start + width + precision + conversion + ">");
      }
    }
  }
  return formats;
}

template <typename Value>
void ExpectAsPrinted(const std::string& conversion, const std::vector<Value>& values) {
  for (const std::string& format : FormatsOf(conversion)) {
    for (const Value value : values) {
      ASSERT_EQ(Formatted(format.c_str(), value).utf8(), Printed(format, value)) << format;
    }
  }
}

TEST(UStringFormatTest, WritesIntegersAsPrintfDoes) {
  for (const char* conversion : {"d", "i"}) {
    ExpectAsPrinted<int>(conversion, {0, 1, -1, 9, 42, -300, 65536, INT_MAX, INT_MIN});
  }
  for (const char* conversion : {"u", "o", "x", "X"}) {
    ExpectAsPrinted<unsigned>(conversion, {0, 1, 8, 42, 65535, UINT_MAX});
  }
  ExpectAsPrinted<long>("ld", {0, -1, LONG_MAX, LONG_MIN});
  ExpectAsPrinted<long long>("lld", {0, -1, LLONG_MAX, LLONG_MIN});
  ExpectAsPrinted<std::intmax_t>("jd", {0, -1, INTMAX_MAX});
  ExpectAsPrinted<std::size_t>("zu", {0, 1, SIZE_MAX});
  ExpectAsPrinted<std::ptrdiff_t>("td", {0, -1, PTRDIFF_MIN});
  ExpectAsPrinted<unsigned long long>("llx", {0, 255, ULLONG_MAX});
  for (const char* conversion : {"hhd", "hd", "hhu", "hu", "hhx", "ho"}) {
    ExpectAsPrinted<int>(conversion, {0, 1, -1, 127, 128, 200, 255, 300, 40000, 70000, INT_MIN});
  }
}

TEST(UStringFormatTest, WritesFloatsAsPrintfDoes) {
  const std::vector<double> values{0.0,  -0.0, 1.0,   -1.5,    0.1,     2.5,   1234567.891,
                                   1e-5, 1e20, 1e100, 123e-20, DBL_MIN, 99.995};
  for (const char* conversion : {"f", "F", "e", "E", "g", "G", "a", "A", "lf", "Lg"}) {
    const std::vector<std::string> formats = FormatsOf(conversion);
    // The C library reads another type for "L".
    const std::vector<std::string> plain = FormatsOf(conversion + std::strlen(conversion) - 1);
    for (std::size_t i = 0; i < formats.size(); ++i) {
      for (const double value : values) {
        ASSERT_EQ(Formatted(formats[i].c_str(), value).utf8(), Printed(plain[i], value))
            << formats[i];
      }
    }
  }
}

TEST(UStringFormatTest, WritesInfinityAndNanAsPrintfDoes) {
  for (const char* conversion : {"f", "F", "e", "G", "a", "A"}) {
    ExpectAsPrinted<double>(conversion, {kInfinity, -kInfinity});
  }
  EXPECT_EQ(Formatted("%f %F", std::nan(""), std::nan("")), "nan NAN");
}

TEST(UStringFormatTest, WritesTextAsPrintfDoes) {
  for (const char* format : {"<%s>", "<%5s>", "<%-5s>", "<%.2s>", "<%6.1s>", "<%.0s>", "<%.9s>"}) {
    for (const char* value : {"", "a", "abcdefgh"}) {
      ASSERT_EQ(Formatted(format, value).utf8(), Printed(format, value)) << format;
    }
  }
  EXPECT_EQ(Formatted("%c%c", 'a', 'b'), "ab");
  EXPECT_EQ(Formatted("<%3c><%-3c>", 'a', 'b'), "<  a><b  >");
}

TEST(UStringFormatTest, CopiesLiteralText) {
  EXPECT_EQ(Formatted(""), "");
  EXPECT_EQ(Formatted("plain"), "plain");
  EXPECT_EQ(Formatted("100%%"), "100%");
  EXPECT_EQ(Formatted("%5%"), "%");
  const std::u16string units(u"\u20AC\0%d\xD800", 5);
  EXPECT_EQ(UnitsOf(Formatted(TextOf(units), 9)), std::u16string(u"\u20AC\09\xD800", 4));
}

TEST(UStringFormatTest, TakesEveryKindOfText) {
  const ovrant_ustring string("\xC3\xA9");
  const wchar_t* wide = L"\u20AC\U0001F600";
  EXPECT_EQ(Formatted("%s|%s|%s", "a\xC3\xA9", wide, string), "a\u00E9|\u20AC\U0001F600|\u00E9");
  EXPECT_EQ(Formatted("%ls|%hs", wide, "a"), "\u20AC\U0001F600|a");
  const unsigned char bytes[] = {'a', 0xC3, 0xA9, 0};
  const signed char letters[] = {'b', 'c', 0};
  EXPECT_EQ(Formatted("%s|%.1s|%s", bytes, bytes, letters), "a\u00E9|a|bc");
  EXPECT_EQ(Formatted("%s|%s|%.9s", "\xFF", "a\xE2\x82", "a\xE2\x82"), "\uFFFD|a\uFFFD|a\uFFFD");
  const ovrant_ustring nul("a\0b", 3);
  EXPECT_EQ(Formatted("<%s>", nul).length(), 5u);
  EXPECT_EQ(UnitsOf(Formatted("%s", TextOf(u"\xD800"))), u"\xD800");
}

TEST(UStringFormatTest, ANullTextIsEmpty) {
  const char* utf8 = nullptr;
  const wchar_t* wide = nullptr;
  EXPECT_EQ(Formatted("<%s%s%3s>", utf8, wide, utf8), "<   >");
  EXPECT_EQ(Formatted("<%s%3s>", nullptr, nullptr), "<   >");
}

TEST(UStringFormatTest, CountsWidthInCodeUnits) {
  EXPECT_EQ(Formatted("%3s|%-3s|%3s", "\xC3\xA9", L"\u20AC", "\xF0\x9F\x98\x80"),
            "  \u00E9|\u20AC  | \U0001F600");
}

TEST(UStringFormatTest, APrecisionNeverCutsACharacter) {
  EXPECT_EQ(Formatted("%.1s|%.2s|%.3s", "\xC3\xA9z", "\xC3\xA9z", "\xC3\xA9z"), "|\u00E9|\u00E9z");
  EXPECT_EQ(Formatted("%.3s|%.4s", "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"), "|\U0001F600");
  const ovrant_ustring string("a\U0001F600b");
  EXPECT_EQ(Formatted("%.2s|%.3s|%.9s", string, string, string), "a|a\U0001F600|a\U0001F600b");
  EXPECT_EQ(Formatted("%.1s", L"\U0001F600x"), "\U0001F600");
}

// The buffers have no terminator and no byte behind them.
TEST(UStringFormatTest, ReadsNoMoreThanThePrecision) {
  const std::unique_ptr<char[]> utf8(new char[3]{'a', 'b', '\xC3'});
  EXPECT_EQ(Formatted("%.3s|%.*s", static_cast<const char*>(utf8.get()), 2,
                      static_cast<const char*>(utf8.get())),
            "ab|ab");
  const std::unique_ptr<wchar_t[]> wide(new wchar_t[2]{L'x', L'y'});
  EXPECT_EQ(Formatted("%.2s", static_cast<const wchar_t*>(wide.get())), "xy");
}

TEST(UStringFormatTest, TakesWidthAndPrecisionFromArguments) {
  EXPECT_EQ(Formatted("<%*d>", 5, 42), "<   42>");
  EXPECT_EQ(Formatted("<%*d>", -5, 42), "<42   >");
  EXPECT_EQ(Formatted("<%.*f>", 2, 1.234), "<1.23>");
  EXPECT_EQ(Formatted("<%.*f>", -1, 1.5), "<1.500000>");
  EXPECT_EQ(Formatted("<%*.*s>", 4, 2, "abc"), "<  ab>");
  EXPECT_EQ(Formatted("<%*d>", std::size_t{4}, 42), "<  42>");
  EXPECT_EQ(Formatted("<%-*c>", short{3}, 'x'), "<x  >");
}

TEST(UStringFormatTest, ConvertsBetweenIntegersAndFloats) {
  EXPECT_EQ(Formatted("%.1f %g %e", 3, 4u, -5L), "3.0 4 -5.000000e+00");
  EXPECT_EQ(Formatted("%d %i %u %x", 3.99, -3.99, 42.0, 255.5f), "3 -3 42 ff");
  EXPECT_EQ(Formatted("%.0f", ULLONG_MAX), "18446744073709551616");
  EXPECT_EQ(Formatted("%d", true), "1");
}

TEST(UStringFormatTest, FloatsOutsideTheIntegersGiveTheNearest) {
  EXPECT_EQ(Formatted("%d %d", 1e300, -1e300), "18446744073709551615 -9223372036854775808");
  EXPECT_EQ(Formatted("%d %d", kInfinity, -kInfinity), "18446744073709551615 -9223372036854775808");
  EXPECT_EQ(Formatted("%d", std::nan("")), "0");
}

TEST(UStringFormatTest, TheArgumentsOwnTypeDecides) {
  EXPECT_EQ(Formatted("%d %i", 5000000000LL, ULLONG_MAX), "5000000000 18446744073709551615");
  EXPECT_EQ(Formatted("%d", 3000000000u), "3000000000");
  EXPECT_EQ(Formatted("%i", static_cast<int>(3000000000u)), "-1294967296");
  EXPECT_EQ(Formatted("%ld %lld", 1, short{-2}), "1 -2");
}

TEST(UStringFormatTest, PromotesIntegersAsCDoes) {
  EXPECT_EQ(Formatted("%x", -1), "ffffffff");
  EXPECT_EQ(Formatted("%x", -1LL), "ffffffffffffffff");
  EXPECT_EQ(Formatted("%u", short{-1}), "4294967295");
  EXPECT_EQ(Formatted("%X", static_cast<signed char>(-2)), "FFFFFFFE");
  EXPECT_EQ(Formatted("%o", short{-1}), "37777777777");
  EXPECT_EQ(Formatted("%d %d", static_cast<unsigned char>(200), static_cast<unsigned short>(65535)),
            "200 65535");
  EXPECT_EQ(Formatted("%x %d", true, false), "1 0");
  EXPECT_EQ(Formatted("%hhx %hx %hhd", -2, -2, 200), "fe fffe -56");
}

TEST(UStringFormatTest, WritesEnumeratorsAsNumbers) {
  enum Plain { kPlain = 7 };
  enum class Scoped : short { kValue = -3 };
  enum class Large : unsigned long long { kValue = ULLONG_MAX };
  EXPECT_EQ(Formatted("%d %i %u", kPlain, Scoped::kValue, Large::kValue),
            "7 -3 18446744073709551615");
  EXPECT_EQ(Formatted("%x %.1f", Scoped::kValue, kPlain), "fffffffd 7.0");
}

struct Constants {
  static const int kCount = 12;
  static const char kLetter = 'k';
  enum { kFlag = 4 };
};

TEST(UStringFormatTest, TakesInClassConstantsThatAreNotDefined) {
  EXPECT_EQ(Formatted("%d %c %d", Constants::kCount, Constants::kLetter, Constants::kFlag),
            "12 k 4");
}

TEST(UStringFormatTest, WritesCharactersByCodeUnitOrCodePoint) {
  EXPECT_EQ(Formatted("%c%c%c", 0xE9, 0x20AC, 0x1F600), "\u00E9\u20AC\U0001F600");
  EXPECT_EQ(Formatted("%c%lc", u'\u20AC', L'\u20AC'), "\u20AC\u20AC");
  EXPECT_EQ(Formatted("%c%c", char16_t{0xD83D}, char16_t{0xDE00}), "\U0001F600");
  EXPECT_EQ(UnitsOf(Formatted("%c", 0)), std::u16string(1, u'\0'));
  EXPECT_EQ(Formatted("%c%c%c", -1, 0x110000, ULLONG_MAX), "\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(Formatted("%c%c", '\xE9', static_cast<unsigned char>(0xE9)), "\uFFFD\uFFFD");
}

TEST(UStringFormatTest, WritesPointers) {
  int object = 0;
  const void* pointer = &object;
  const std::string hex =
      Printed("%llx", static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(pointer)));
  EXPECT_EQ(Formatted("%p", pointer).utf8(), "0x" + hex);
  EXPECT_EQ(Formatted("%p", &object).utf8(), "0x" + hex);
  EXPECT_EQ(Formatted("<%5p><%-5p>", static_cast<void*>(nullptr), static_cast<char*>(nullptr)),
            "<  0x0><0x0  >");
  EXPECT_EQ(Formatted("%p", nullptr), "0x0");
  EXPECT_EQ(Formatted("%+ #020.9p", nullptr), "                 0x0");
}

TEST(UStringFormatTest, WritesNothingForN) {
  int count = 1234;
  EXPECT_EQ(Formatted("ab%ncd%d", &count, 5), "abcd5");
  EXPECT_EQ(count, 1234);
}

TEST(UStringFormatTest, LeavesTheTextOfAConversionWithoutArgument) {
  EXPECT_EQ(Formatted("%d %-5.2f %s"), "%d %-5.2f %s");
  EXPECT_EQ(Formatted("%d %d", 1), "1 %d");
  EXPECT_EQ(Formatted("%*d", 5), "%*d");
  EXPECT_EQ(Formatted("%*.*s"), "%*.*s");
  EXPECT_EQ(Formatted("100% done"), "100% done");
}

TEST(UStringFormatTest, LeavesTheTextOfAConversionThatDoesNotFit) {
  const ovrant_ustring string("x");
  const void* pointer = &string;
  EXPECT_EQ(Formatted("%d|%f|%c|%p", "x", L"x", string, string), "%d|%f|%c|%p");
  EXPECT_EQ(Formatted("%s|%5s|%s", 1, 2.5, pointer), "%s|%5s|%s");
  EXPECT_EQ(Formatted("%c|%p|%p", 1.5, 1, 2.5), "%c|%p|%p");
  EXPECT_EQ(Formatted("%d|%f", pointer, pointer), "%d|%f");
}

TEST(UStringFormatTest, ConversionThatDoesNotFitStillTakesItsArguments) {
  EXPECT_EQ(Formatted("%s %d", 1, 2), "%s 2");
  EXPECT_EQ(Formatted("%*d %d", "x", 1, 2), "%*d 2");
  EXPECT_EQ(Formatted("%*d %d", 1.5, 1, 2), "%*d 2");
}

TEST(UStringFormatTest, KeepsTheTextOfUnknownConversions) {
  EXPECT_EQ(Formatted("%y %d", 1), "%y 1");
  EXPECT_EQ(Formatted("%"), "%");
  for (const char* format : {"%1$d", "%'d", "%m%S%D", "a%-08.3l"}) {
    EXPECT_EQ(Formatted(format, 1), format);
  }
  EXPECT_EQ(Formatted(TextOf(u"%\u20AC%d"), 1), "%\u20AC1");
}

TEST(UStringFormatTest, IgnoresExtraArguments) { EXPECT_EQ(Formatted("%d", 1, "x", 2.5), "1"); }

TEST(UStringFormatTest, BoundsWidthAndThePrecisionOfNumbers) {
  for (const char* format :
       {"%4096d", "%4097d", "%999999999999999999999d", "%.4096d", "%.4097d", "%.99999999d"}) {
    EXPECT_EQ(Formatted(format, 1).length(), 4096u) << format;
  }
  EXPECT_EQ(Formatted("%-2147483648s|", "x").length(), 4097u);
  EXPECT_EQ(Formatted("%*d", INT_MIN, 1).length(), 4096u);
  EXPECT_EQ(Formatted("%*d", LLONG_MAX, 1).length(), 4096u);
  EXPECT_EQ(Formatted("%*d", LLONG_MIN, 1).length(), 4096u);
  EXPECT_EQ(Formatted("%.99999999f", 1.5).length(), 4098u);
  EXPECT_EQ(Formatted("%.99999999f", DBL_MAX).length(), 309u + 1 + 4096);
  EXPECT_EQ(Formatted("%.99999999a", 1.0).length(), 4u + 4096 + 3);
  EXPECT_EQ(Formatted("%.*f", LLONG_MIN, 1.5), "1.500000");
  EXPECT_EQ(Formatted("%.9999s", std::string(10000, 'x').c_str()).length(), 9999u);
}

TEST(UStringFormatTest, TakesItselfAsFormatAndAsArgument) {
  ovrant_ustring text("<%s>");
  text.Format(text, text);
  EXPECT_EQ(text, "<<%s>>");
}

TEST(UStringFormatTest, IsIndependentOfTheLocale) {
  const CommaLocale locale;
  EXPECT_EQ(Formatted("%.2f %g %#.0f %e", 1.5, 2.5, 3.0, 4.25), "1.50 2.5 3. 4.250000e+00");
  EXPECT_EQ(Formatted("<%7.2f>", 1.5), "<   1.50>");
  EXPECT_EQ(Formatted("%a", 1.5), "0x1.8p+0");
  EXPECT_EQ(Formatted("%d", 1234567), "1234567");
  EXPECT_TRUE(CommaLocale::IsInForce());
}

}  // namespace
}  // namespace stowra_test

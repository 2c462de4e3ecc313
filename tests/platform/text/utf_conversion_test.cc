// SPDX-License-Identifier: MIT
// Conversion against a second, plain implementation, around every size at which the fast one
// changes its step.

#include "common_stowraapi/platform/text/utf_conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "common_stowraapi/platform/text/ascii_run.h"

namespace stowra_test {
namespace {

using ovrant::utils::ConvertAscii;
using ovrant::utils::kAsciiBlock;
using ovrant::utils::kAsciiStretch;
using ovrant::utils::Utf16ToUtf8;
using ovrant::utils::Utf8ToUtf16;

constexpr char32_t kReplacement = 0xFFFD;

// The range that the byte `index` of a sequence may have after the lead byte `lead`.
bool IsAllowed(unsigned lead, std::size_t index, unsigned byte) {
  if (index > 1) return byte >= 0x80 && byte <= 0xBF;
  const unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  return byte >= lowest && byte <= highest;
}

std::u32string PlainDecode(std::string_view bytes) {
  std::u32string characters;
  for (std::size_t i = 0; i < bytes.size();) {
    const auto lead = static_cast<unsigned char>(bytes[i++]);
    const std::size_t length = lead < 0x80                    ? 1
                               : lead >= 0xC2 && lead <= 0xDF ? 2
                               : lead >= 0xE0 && lead <= 0xEF ? 3
                               : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                              : 0;
    if (length < 2) {
      characters += length == 1 ? lead : kReplacement;
      continue;
    }
    char32_t character = lead & (0x7Fu >> length);
    std::size_t read = 1;
    for (; read < length && i < bytes.size(); ++read, ++i) {
      const auto byte = static_cast<unsigned char>(bytes[i]);
      if (!IsAllowed(lead, read, byte)) break;
      character = character << 6 | (byte & 0x3F);
    }
    characters += read == length ? character : kReplacement;
  }
  return characters;
}

std::u16string PlainUtf16(std::u32string_view characters) {
  std::u16string units;
  for (const char32_t character : characters) {
    const bool is_pair = character >= 0x10000;
    if (is_pair) units += static_cast<char16_t>(0xD7C0 + (character >> 10));
    units += static_cast<char16_t>(is_pair ? 0xDC00 + (character & 0x3FF) : character);
  }
  return units;
}

std::string PlainUtf8(std::u16string_view units) {
  std::string bytes;
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t character = units[i];
    const bool has_low = i + 1 < units.size() && (units[i + 1] & 0xFC00) == 0xDC00;
    if ((character & 0xFC00) == 0xD800 && has_low) {
      character = 0x10000 + ((character & 0x3FF) << 10) + (units[++i] & 0x3FFu);
    } else if ((character & 0xF800) == 0xD800) {
      character = kReplacement;
    }
    if (character < 0x80) {
      bytes += static_cast<char>(character);
      continue;
    }
    const int more = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    bytes += static_cast<char>((0xFF00 >> (more + 1) & 0xFF) | character >> 6 * more);
    for (int left = more - 1; left >= 0; --left) {
      bytes += static_cast<char>(0x80 | (character >> 6 * left & 0x3F));
    }
  }
  return bytes;
}

// Shows where two long texts differ, not the texts.
template <typename Text>
testing::AssertionResult Same(const Text& actual, const Text& expected) {
  if (actual == expected) return testing::AssertionSuccess();
  const auto parted = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
  return testing::AssertionFailure() << "sizes " << actual.size() << " and " << expected.size()
                                     << ", first difference at " << parted.first - actual.begin();
}

void ExpectConverted(const std::string& bytes) {
  // A copy of exactly that size: a sanitizer sees a read behind it.
  const auto exact = std::make_unique<char[]>(bytes.size());
  bytes.copy(exact.get(), bytes.size());
  const std::u16string units = Utf8ToUtf16({exact.get(), bytes.size()});
  ASSERT_TRUE(Same(units, PlainUtf16(PlainDecode(bytes))));
  ASSERT_TRUE(Same(Utf16ToUtf8(units), PlainUtf8(units)));
}

TEST(UtfConversionTest, ConvertsEveryCharacter) {
  std::string bytes;
  for (char32_t character = 0; character <= 0x10FFFF; ++character) {
    if (character >= 0xD800 && character <= 0xDFFF) continue;
    bytes += PlainUtf8(PlainUtf16({&character, 1}));
  }
  ExpectConverted(bytes);
  EXPECT_TRUE(Same(Utf16ToUtf8(Utf8ToUtf16(bytes)), bytes));
}

TEST(UtfConversionTest, ConvertsEveryUnitAlone) {
  for (unsigned value = 0; value <= 0xFFFF; ++value) {
    const auto unit = static_cast<char16_t>(value);
    ASSERT_EQ(Utf16ToUtf8({&unit, 1}), PlainUtf8({&unit, 1})) << value;
  }
}

TEST(UtfConversionTest, ConvertsEveryTwoBytes) {
  for (unsigned value = 0; value <= 0xFFFF; ++value) {
    const char bytes[] = {static_cast<char>(value >> 8), static_cast<char>(value)};
    ASSERT_EQ(Utf8ToUtf16({bytes, 2}), PlainUtf16(PlainDecode({bytes, 2}))) << value;
  }
}

// Steps and blocks are powers of two. The test puts a character of each length near each boundary:
// whole, cut short or wrong, in ASCII and in dense text.
TEST(UtfConversionTest, ConvertsAcrossItsSteps) {
  const std::vector<std::string> parts{
      "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xE2\x82",     "\xF0\x9F\x98", "\xF0\x9F",
      "\xF0",     "\x80",         "\x80\x80\x80",     "\xED\xA0\x80", "\xF4\x90\x80", "\xC0\xAF",
      "\xFF"};
  for (const std::string& filler : {std::string("a"), std::string("\xC3\xA9")}) {
    for (const std::size_t boundary : {32u, 64u, 128u, 256u, 512u, 1024u, 2048u, 4096u}) {
      for (std::size_t before = boundary - 20; before <= boundary + 4; ++before) {
        for (const std::string& part : parts) {
          std::string bytes;
          while (bytes.size() < before) bytes += filler;
          ExpectConverted(bytes + part);
          ExpectConverted(bytes + part + "z" + filler + part + std::string(50, 'z') + part);
        }
      }
    }
  }
}

TEST(UtfConversionTest, EncodesAcrossItsSteps) {
  const std::vector<std::u16string> parts{u"\u00E9", u"\u20AC", u"\U0001F600",
                                          u"\xD83D", u"\xDE00", u"\xDE00\xD83D"};
  for (const std::u16string& filler : {std::u16string(u"a"), std::u16string(u"\u0416")}) {
    for (const std::size_t boundary : {32u, 64u, 128u, 256u, 512u, 1024u, 2048u, 4096u}) {
      for (std::size_t before = boundary - 20; before <= boundary + 4; ++before) {
        for (const std::u16string& part : parts) {
          std::u16string units;
          while (units.size() < before) units += filler;
          const std::u16string text = units + part + u"z" + filler + part + filler;
          ASSERT_TRUE(Same(Utf16ToUtf8(units + part), PlainUtf8(units + part)));
          ASSERT_TRUE(Same(Utf16ToUtf8(text), PlainUtf8(text)));
        }
      }
    }
  }
}

// Runs of all kinds and lengths. The seed is fixed.
TEST(UtfConversionTest, ConvertsMixedTextAndNoise) {
  const std::vector<std::string> pieces{"a",    "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                                        "\x80", "\xE2",     "\xF0\x9F",     "\xED\xA0"};
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    std::string bytes;
    const std::size_t size = random() % 6000;
    while (bytes.size() < size) {
      const std::string& piece = pieces[random() % pieces.size()];
      for (std::size_t count = random() % 70; count > 0; --count) bytes += piece;
    }
    ExpectConverted(bytes);
    for (char& byte : bytes) byte = static_cast<char>(random());
    ExpectConverted(bytes);
  }
}

TEST(UtfConversionTest, EncodesNoise) {
  std::mt19937 random(2);
  for (int round = 0; round < 300; ++round) {
    std::u16string units(random() % 6000, u' ');
    // Mostly surrogates, so that pairs and lone ones meet.
    for (char16_t& unit : units) {
      unit = static_cast<char16_t>(random() % 4 == 0 ? random() : 0xD800 | (random() & 0x7FF));
    }
    ASSERT_TRUE(Same(Utf16ToUtf8(units), PlainUtf8(units)));
  }
}

TEST(AsciiRunTest, RejectsEveryUnitBeyondAscii) {
  for (unsigned value = 0; value <= 0xFFFF; ++value) {
    const std::u16string units(kAsciiStretch, static_cast<char16_t>(value));
    char bytes[kAsciiStretch];
    for (const std::size_t length : {std::size_t{1}, kAsciiBlock, kAsciiStretch}) {
      ASSERT_EQ(ConvertAscii(units.data(), length, bytes), value < 0x80 ? length : 0) << value;
    }
  }
}

TEST(AsciiRunTest, StopsAtTheFirstUnitThatIsNotAscii) {
  for (std::size_t length = 0; length <= 110; ++length) {
    for (std::size_t stop = 0; stop <= length; ++stop) {
      std::string bytes;
      for (std::size_t i = 0; i < length; ++i) bytes += static_cast<char>(i * 37 % 128);
      std::u16string units(bytes.begin(), bytes.end());
      if (stop < length) {
        bytes[stop] = static_cast<char>(0x80 | stop);
        units[stop] = static_cast<char16_t>(1u << (7 + stop % 9));
      }
      const auto wide = std::make_unique<char16_t[]>(length);
      const auto narrow = std::make_unique<char[]>(length);
      ASSERT_EQ(ConvertAscii(bytes.data(), length, wide.get()), stop);
      ASSERT_EQ(ConvertAscii(units.data(), length, narrow.get()), stop);
      ASSERT_EQ(std::u16string_view(wide.get(), stop), std::u16string_view(units).substr(0, stop));
      ASSERT_EQ(std::string_view(narrow.get(), stop), std::string_view(bytes).substr(0, stop));
    }
  }
}

}  // namespace
}  // namespace stowra_test

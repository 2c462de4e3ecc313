// SPDX-License-Identifier: MIT
// Conversion against the fuzz targets' plain one, around every size at which the fast one changes
// its step.

#include "common_stowraapi/platform/text/utf_conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "common_stowraapi/platform/text/ascii_run.h"
#include "fuzz/platform/text/model.h"

namespace stowra_test {
namespace {

using ovrant::utils::ConvertAscii;
using ovrant::utils::kAsciiBlock;
using ovrant::utils::kAsciiStretch;
using ovrant::utils::Utf16ToUtf8;
using ovrant::utils::Utf8ToUtf16;
using stowra_fuzz::DecodeUtf32;
using stowra_fuzz::DecodeUtf8;
using stowra_fuzz::EncodeUtf8;

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
  ASSERT_TRUE(Same(units, DecodeUtf8(bytes)));
  ASSERT_TRUE(Same(Utf16ToUtf8(units), EncodeUtf8(units)));
}

TEST(UtfConversionTest, ConvertsEveryCharacter) {
  std::vector<std::uint32_t> characters;
  for (std::uint32_t character = 0; character <= 0x10FFFF; ++character) {
    if (character < 0xD800 || character > 0xDFFF) characters.push_back(character);
  }
  const std::string bytes = EncodeUtf8(DecodeUtf32(characters));
  ExpectConverted(bytes);
  EXPECT_TRUE(Same(Utf16ToUtf8(Utf8ToUtf16(bytes)), bytes));
}

TEST(UtfConversionTest, ConvertsEveryUnitAlone) {
  for (unsigned value = 0; value <= 0xFFFF; ++value) {
    const auto unit = static_cast<char16_t>(value);
    ASSERT_EQ(Utf16ToUtf8({&unit, 1}), EncodeUtf8({&unit, 1})) << value;
  }
}

TEST(UtfConversionTest, ConvertsEveryTwoBytes) {
  for (unsigned value = 0; value <= 0xFFFF; ++value) {
    const char bytes[] = {static_cast<char>(value >> 8), static_cast<char>(value)};
    ASSERT_EQ(Utf8ToUtf16({bytes, 2}), DecodeUtf8({bytes, 2})) << value;
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
          ASSERT_TRUE(Same(Utf16ToUtf8(units + part), EncodeUtf8(units + part)));
          ASSERT_TRUE(Same(Utf16ToUtf8(text), EncodeUtf8(text)));
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
    ASSERT_TRUE(Same(Utf16ToUtf8(units), EncodeUtf8(units)));
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

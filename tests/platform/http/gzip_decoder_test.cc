// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/gzip_decoder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common_stowraapi/platform/http/body_buffer.h"
#include "tests/platform/http/gzip_text.h"

namespace stowra_test {
namespace {

using ovrant::internet::BodyBuffer;
using ovrant::internet::GzipDecoder;
using Result = GzipDecoder::Result;

// A decoder and what it has decoded.
struct Decoding {
  Result Decode(std::string_view data, std::size_t cap = SIZE_MAX) {
    return decoder.Decode(data.data(), data.size(), cap, out);
  }
  bool AtEnd() const { return decoder.AtEnd(); }
  std::string Text() const {
    return std::string(reinterpret_cast<const char*>(out.data()), out.size());
  }

  GzipDecoder decoder;
  BodyBuffer out;
};

TEST(GzipDecoderTest, DecodesByteByByteAndKnowsTheEnd) {
  const std::string data = Gzip("hello") + Gzip(" world");
  const std::size_t first = Gzip("hello").size();
  Decoding gzip;
  for (std::size_t i = 0; i < data.size(); ++i) {
    ASSERT_EQ(gzip.Decode(std::string_view(data).substr(i, 1)), Result::kOk);
    EXPECT_EQ(gzip.AtEnd(), i + 1 == first || i + 1 == data.size()) << i;
  }
  EXPECT_EQ(gzip.Text(), "hello world");
}

// With more than one step of output, and with text that does not get shorter.
TEST(GzipDecoderTest, DecodesInOneCall) {
  for (const std::string& text :
       {std::string("hello"), std::string(65535, 'x'), std::string(65536, 'x'),
        std::string(65537, 'x'), std::string(131072, 'x'), std::string(1000000, 'x'),
        Incompressible(300'000)}) {
    Decoding gzip;
    EXPECT_EQ(gzip.Decode(Gzip(text)), Result::kOk);
    EXPECT_TRUE(gzip.AtEnd());
    EXPECT_TRUE(gzip.Text() == text) << text.size();
  }
}

TEST(GzipDecoderTest, AcceptsEmptyInput) {
  Decoding gzip;
  EXPECT_TRUE(gzip.AtEnd());
  for (const std::string& data : {std::string(), Gzip("")}) {
    EXPECT_EQ(gzip.Decode(data), Result::kOk);
    EXPECT_TRUE(gzip.AtEnd());
  }
  EXPECT_EQ(gzip.out.size(), 0U);
}

TEST(GzipDecoderTest, IsNotAtTheEndOfAnyPrefix) {
  const std::string data = Gzip("hello world");
  for (std::size_t length = 1; length < data.size(); ++length) {
    Decoding gzip;
    EXPECT_EQ(gzip.Decode(data.substr(0, length)), Result::kOk);
    EXPECT_FALSE(gzip.AtEnd()) << length;
  }
}

TEST(GzipDecoderTest, CapIsExact) {
  for (const std::size_t size : {1U, 100U, 65536U, 200000U}) {
    const std::string data = Gzip(std::string(size, 'x'));
    Decoding fits;
    EXPECT_EQ(fits.Decode(data, size), Result::kOk) << size;
    EXPECT_TRUE(fits.AtEnd());
    EXPECT_EQ(fits.out.size(), size);
    Decoding too_large;
    EXPECT_EQ(too_large.Decode(data, size - 1), Result::kTooLarge) << size;
    EXPECT_LE(too_large.out.size(), size);
  }
}

TEST(GzipDecoderTest, CapHoldsAcrossCallsAndMembers) {
  Decoding gzip;
  for (const char* text : {"12345", "67890", ""}) {
    EXPECT_EQ(gzip.Decode(Gzip(text), 10), Result::kOk);
  }
  EXPECT_EQ(gzip.Decode(Gzip("1"), 10), Result::kTooLarge);
}

TEST(GzipDecoderTest, StopsABombAtTheCap) {
  Decoding gzip;
  EXPECT_EQ(gzip.Decode(Gzip(std::string(std::size_t{64} << 20, '\0')), 1000), Result::kTooLarge);
  EXPECT_LE(gzip.out.size(), 1001U);
}

TEST(GzipDecoderTest, RefusesCorruptData) {
  const std::string data = Gzip(Incompressible(1000));
  // Magic number, method, data, checksum and length.
  for (const std::size_t place : {std::size_t{0}, std::size_t{1}, std::size_t{2}, data.size() / 2,
                                  data.size() - 8, data.size() - 1}) {
    std::string corrupt = data;
    corrupt[place] = static_cast<char>(corrupt[place] ^ 1);
    EXPECT_EQ(Decoding().Decode(corrupt), Result::kCorrupt) << place;
  }
}

TEST(GzipDecoderTest, RefusesOtherFormats) {
  // A zlib stream (RFC 1950), which HTTP calls deflate. It holds "hello".
  const std::string deflate("\x78\x9C\xCBH\xCD\xC9\xC9\x07\0\x06,\x02\x15", 13);
  for (const std::string& data : {std::string("plain text"), deflate, std::string(20, '\0'),
                                  Gzip("a") + "garbage", Gzip("a") + std::string(10, '\0')}) {
    EXPECT_EQ(Decoding().Decode(data), Result::kCorrupt) << data;
  }
}

}  // namespace
}  // namespace stowra_test

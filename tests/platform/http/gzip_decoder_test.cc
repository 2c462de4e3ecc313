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

constexpr std::size_t kNoCap = SIZE_MAX;

std::string TextOf(const BodyBuffer& buffer) {
  return std::string(reinterpret_cast<const char*>(buffer.data()), buffer.size());
}

std::string Varied(std::size_t size) {
  std::string text;
  unsigned int state = 1;
  while (text.size() < size) {
    state = state * 1664525U + 1013904223U;
    text += static_cast<char>(state >> 24);
  }
  return text;
}

class GzipDecoderTest : public ::testing::Test {
 protected:
  Result Decode(std::string_view data, std::size_t cap = kNoCap) {
    return decoder_.Decode(data.data(), data.size(), cap, out_);
  }

  GzipDecoder decoder_;
  BodyBuffer out_;
};

TEST_F(GzipDecoderTest, DecodesInOneCall) {
  EXPECT_TRUE(decoder_.AtEnd());
  EXPECT_EQ(Decode(Gzip("hello")), Result::kOk);
  EXPECT_EQ(TextOf(out_), "hello");
  EXPECT_TRUE(decoder_.AtEnd());
}

TEST_F(GzipDecoderTest, DecodesByteByByteAndKnowsTheEnd) {
  const std::string data = Gzip("hello") + Gzip(" world");
  const std::size_t first = Gzip("hello").size();
  for (std::size_t i = 0; i < data.size(); ++i) {
    ASSERT_EQ(Decode(std::string_view(data).substr(i, 1)), Result::kOk);
    EXPECT_EQ(decoder_.AtEnd(), i + 1 == first || i + 1 == data.size()) << i;
  }
  EXPECT_EQ(TextOf(out_), "hello world");
}

TEST_F(GzipDecoderTest, DecodesMoreThanOneStepOfOutput) {
  for (const std::size_t size : {65535U, 65536U, 65537U, 131072U, 1000000U}) {
    GzipDecoder decoder;
    BodyBuffer out;
    const std::string text(size, 'x');
    const std::string data = Gzip(text);
    EXPECT_EQ(decoder.Decode(data.data(), data.size(), kNoCap, out), Result::kOk);
    EXPECT_TRUE(decoder.AtEnd());
    EXPECT_TRUE(TextOf(out) == text) << size;
  }
}

TEST_F(GzipDecoderTest, DecodesIncompressibleText) {
  const std::string text = Varied(300'000);
  EXPECT_EQ(Decode(Gzip(text)), Result::kOk);
  EXPECT_TRUE(TextOf(out_) == text);
}

TEST_F(GzipDecoderTest, AppendsToTheOutput) {
  out_.Append("before ", 7);
  EXPECT_EQ(Decode(Gzip("after")), Result::kOk);
  EXPECT_EQ(TextOf(out_), "before after");
}

TEST_F(GzipDecoderTest, AcceptsEmptyInput) {
  EXPECT_EQ(Decode(""), Result::kOk);
  EXPECT_TRUE(decoder_.AtEnd());
  EXPECT_EQ(Decode(Gzip("")), Result::kOk);
  EXPECT_TRUE(decoder_.AtEnd());
  EXPECT_EQ(out_.size(), 0U);
}

TEST_F(GzipDecoderTest, IsNotAtTheEndOfAnyPrefix) {
  const std::string data = Gzip("hello world");
  for (std::size_t length = 1; length < data.size(); ++length) {
    GzipDecoder decoder;
    BodyBuffer out;
    EXPECT_EQ(decoder.Decode(data.data(), length, kNoCap, out), Result::kOk);
    EXPECT_FALSE(decoder.AtEnd()) << length;
  }
}

TEST_F(GzipDecoderTest, CapIsExact) {
  for (const std::size_t size : {1U, 100U, 65536U, 200000U}) {
    const std::string data = Gzip(std::string(size, 'x'));
    GzipDecoder fits;
    BodyBuffer out;
    EXPECT_EQ(fits.Decode(data.data(), data.size(), size, out), Result::kOk) << size;
    EXPECT_TRUE(fits.AtEnd());
    EXPECT_EQ(out.size(), size);
    GzipDecoder too_large;
    BodyBuffer small;
    EXPECT_EQ(too_large.Decode(data.data(), data.size(), size - 1, small), Result::kTooLarge)
        << size;
    EXPECT_LE(small.size(), size);
  }
}

TEST_F(GzipDecoderTest, CapHoldsAcrossCallsAndMembers) {
  EXPECT_EQ(Decode(Gzip("12345"), 10), Result::kOk);
  EXPECT_EQ(Decode(Gzip("67890"), 10), Result::kOk);
  EXPECT_EQ(Decode(Gzip(""), 10), Result::kOk);
  EXPECT_EQ(Decode(Gzip("1"), 10), Result::kTooLarge);
}

TEST_F(GzipDecoderTest, StopsABombAtTheCap) {
  const std::string bomb = Gzip(std::string(std::size_t{64} << 20, '\0'));
  EXPECT_EQ(Decode(bomb, 1000), Result::kTooLarge);
  EXPECT_LE(out_.size(), 1001U);
}

TEST_F(GzipDecoderTest, RefusesCorruptData) {
  const std::string data = Gzip(Varied(1000));
  // Magic number, method, checksum and length.
  for (const std::size_t place :
       {std::size_t{0}, std::size_t{1}, std::size_t{2}, data.size() - 8, data.size() - 1}) {
    std::string corrupt = data;
    corrupt[place] = static_cast<char>(corrupt[place] ^ 1);
    GzipDecoder decoder;
    BodyBuffer out;
    EXPECT_EQ(decoder.Decode(corrupt.data(), corrupt.size(), kNoCap, out), Result::kCorrupt)
        << place;
  }
}

TEST_F(GzipDecoderTest, RefusesOtherFormats) {
  for (const std::string& data : {std::string("plain text"), Deflate("hello"),
                                  std::string(20, '\0'), Gzip("a") + "garbage"}) {
    GzipDecoder decoder;
    BodyBuffer out;
    EXPECT_EQ(decoder.Decode(data.data(), data.size(), kNoCap, out), Result::kCorrupt);
  }
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/chunk_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace stowra_test {
namespace {

using ovrant::internet::ChunkDecoder;

// Decodes `encoded` in pieces of `size` bytes.
std::string Decoded(std::string_view encoded, std::size_t size, ChunkDecoder& decoder) {
  std::string decoded;
  for (; !encoded.empty(); encoded.remove_prefix(std::min(size, encoded.size()))) {
    for (std::string_view rest = encoded.substr(0, size); !rest.empty();) {
      decoded += decoder.Next(rest);
    }
  }
  return decoded;
}

TEST(ChunkDecoder, JoinsChunksFedInPiecesOfAnySize) {
  constexpr char kBody[] =
      "5\r\nhello\r\n1;name=value\r\n \r\n00b\r\n0\r\n\r\n world\r\n0\r\nTrailer: x\r\n\r\n";
  for (std::size_t size = 1; size < sizeof(kBody); ++size) {
    ChunkDecoder decoder;
    EXPECT_EQ(Decoded(kBody, size, decoder), "hello 0\r\n\r\n world") << size;
    EXPECT_TRUE(decoder.AtEnd()) << size;
  }
}

TEST(ChunkDecoder, EndsOnlyAfterTheTrailer) {
  constexpr std::string_view kBody = "A\r\n0123456789\r\n0\r\nTrailer: x\r\n\r\n";
  for (std::size_t length = 0; length < kBody.size(); ++length) {
    ChunkDecoder decoder;
    Decoded(kBody.substr(0, length), 3, decoder);
    EXPECT_FALSE(decoder.AtEnd()) << length;
  }
}

TEST(ChunkDecoder, AcceptsBareLineFeeds) {
  ChunkDecoder decoder;
  EXPECT_EQ(Decoded("f\n0123456789abcde\n0\n\n", 100, decoder), "0123456789abcde");
  EXPECT_TRUE(decoder.AtEnd());
}

TEST(ChunkDecoder, SeesThatABodyIsBroken) {
  for (const char* body :
       {"5\r\nhello!\r\n0\r\n\r\n", "5\r\nhello\r\r\n0\r\n\r\n", "x\r\n0\r\n\r\n", "\r\n0\r\n\r\n",
        "5\r\nhello\r\n\r\n0\r\n\r\n", "-1\r\n0\r\n\r\n", "10000000000000000\r\n0\r\n\r\n",
        "0x5\r\nhello\r\n0\r\n\r\n", "5,\r\nhello\r\n0\r\n\r\n", "0\r\ngarbage\r\n\r\n",
        "0\r\n: no name\r\n\r\n", "0\r\n continues nothing\r\n\r\n"}) {
    ChunkDecoder decoder;
    Decoded(body, 3, decoder);
    EXPECT_TRUE(decoder.IsBroken()) << body;
    EXPECT_FALSE(decoder.AtEnd()) << body;
  }
}

TEST(ChunkDecoder, TakesEveryHexadecimalDigit) {
  const std::string_view digits = "0123456789abcdef";
  for (const std::string_view written : {digits, std::string_view("0123456789ABCDEF")}) {
    for (std::size_t size = 1; size < digits.size(); ++size) {
      ChunkDecoder decoder;
      const std::string body = written[size] + ("\r\n" + std::string(digits.substr(0, size)));
      EXPECT_EQ(Decoded(body + "\r\n0\r\n\r\n", 100, decoder), digits.substr(0, size));
      EXPECT_TRUE(decoder.AtEnd()) << written[size];
    }
  }
}

TEST(ChunkDecoder, TakesTheLargestSize) {
  ChunkDecoder decoder;
  EXPECT_EQ(Decoded("ffffffffffffffff\r\nhello", 100, decoder), "hello");
  EXPECT_FALSE(decoder.IsBroken());
}

TEST(ChunkDecoder, RefusesNulInTheTrailingSection) {
  ChunkDecoder decoder;
  Decoded(std::string_view("0\r\nA: \0\r\n\r\n", 11), 100, decoder);
  EXPECT_TRUE(decoder.IsBroken());
}

TEST(ChunkDecoder, CountsTheTrailingSection) {
  ChunkDecoder decoder;
  Decoded("0\r\nA: 1\r\nB: 2\r\n more\r\n\r\n", 1, decoder);
  EXPECT_TRUE(decoder.AtEnd());
  EXPECT_EQ(decoder.trailer_lines(), 3U);
  EXPECT_EQ(decoder.trailer_bytes(), 21U);
}

TEST(ChunkDecoder, LimitsTheLengthOfATrailerLine) {
  const std::string longest = "A:" + std::string(ChunkDecoder::kMaxTrailerLine - 2, 'x');
  ChunkDecoder decoder;
  Decoded("0\r\n" + longest + "\r\n" + longest + "\r\n\r\n", 1000, decoder);
  EXPECT_TRUE(decoder.AtEnd());
  EXPECT_FALSE(decoder.IsTrailerTooLong());
  ChunkDecoder refused;
  Decoded("0\r\n" + longest + "x\r\n\r\n", 1000, refused);
  EXPECT_TRUE(refused.IsBroken());
  EXPECT_TRUE(refused.IsTrailerTooLong());
}

TEST(ChunkDecoder, LimitsTheLengthOfASizeLine) {
  const std::string longest = "5;" + std::string(ChunkDecoder::kMaxSizeLine - 4, 'x') + "\r\n";
  ChunkDecoder decoder;
  EXPECT_EQ(Decoded(longest + "hello\r\n" + longest + "again\r\n0\r\n\r\n", 1000, decoder),
            "helloagain");
  EXPECT_TRUE(decoder.AtEnd());
  ChunkDecoder refused;
  EXPECT_EQ(Decoded("5;x" + longest.substr(2) + "hello\r\n", 1000, refused), "");
  EXPECT_TRUE(refused.IsBroken());
}

TEST(ChunkDecoder, IgnoresBytesAfterTheEnd) {
  ChunkDecoder decoder;
  EXPECT_EQ(Decoded("0\r\n\r\n5\r\nhello\r\n", 100, decoder), "");
  EXPECT_TRUE(decoder.AtEnd());
}

}  // namespace
}  // namespace stowra_test

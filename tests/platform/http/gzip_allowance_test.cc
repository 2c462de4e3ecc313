// SPDX-License-Identifier: MIT
// A compressed body may be a little longer than the cap of the body.

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>

#include "common_stowraapi/platform/http/reply_decoder.h"
#include "tests/platform/http/gzip_text.h"

namespace stowra_test {
namespace {

using ovrant::internet::ReplyDecoder;
using ovrant::internet::TransferError;

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

// A decoder that has the head of a gzip reply.
struct GzipReply {
  explicit GzipReply(std::size_t cap) : decoder(cap, true) {
    for (const char* line : {"HTTP/1.1 200 OK\r\n", "Content-Encoding: gzip\r\n", "\r\n"}) {
      EXPECT_TRUE(decoder.AddHeaderLine(line));
    }
  }

  std::string Body() {
    return std::string(reinterpret_cast<const char*>(decoder.body().data()), decoder.body().size());
  }

  ReplyDecoder decoder;
};

// A gzip stream of `size` bytes that holds `text`. Most of it is a file name (RFC 1952, 2.3.1).
std::string GzipWithName(const std::string& text, std::size_t size) {
  std::string gzip = Gzip(text);
  gzip[3] = 8;
  gzip.insert(10, std::string(size - gzip.size() - 1, 'n') + '\0');
  return gzip;
}

TEST(GzipAllowance, IsOneIn1024AndAMebibyte) {
  for (const std::size_t cap : {std::size_t{4096}, 16 * kMebibyte}) {
    const std::size_t most = cap + cap / 1024 + kMebibyte;
    GzipReply longest(cap);
    EXPECT_TRUE(longest.decoder.AddBody(GzipWithName("hello", most))) << cap;
    EXPECT_EQ(longest.Body(), "hello");
    GzipReply too_long(cap);
    EXPECT_FALSE(too_long.decoder.AddBody(GzipWithName("hello", most + 1))) << cap;
    EXPECT_EQ(too_long.decoder.failure().error, TransferError::kTooLarge);
  }
}

// With the allowance, such a cap is larger than any number.
TEST(GzipAllowance, DoesNotOverflow) {
  std::mt19937 random;
  std::string body(kMebibyte + kMebibyte / 8, '\0');
  for (char& byte : body) byte = static_cast<char>(random());
  for (const std::size_t cap : {SIZE_MAX / 1025 * 1024, SIZE_MAX}) {
    GzipReply reply(cap);
    EXPECT_TRUE(reply.decoder.AddBody(Gzip(body))) << cap;
    EXPECT_TRUE(reply.Body() == body) << cap;
  }
}

}  // namespace
}  // namespace stowra_test

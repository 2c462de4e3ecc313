// SPDX-License-Identifier: MIT
// Limits of a reply. Downloads and uploads have the same.

#include <gtest/gtest.h>

#include <string>

#include "common_stowraapi/platform/http/chunk_decoder.h"
#include "common_stowraapi/platform/http/response_head.h"
#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/handlers.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

using namespace std::string_literals;  // NOLINT(google-build-using-namespace)
using ovrant::internet::ChunkDecoder;
using ovrant::internet::ResponseHead;

constexpr char kChunkedHead[] = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
constexpr char kChunks[] = "5\r\nhello\r\n0\r\n";

std::string Chunked(const std::string& chunks) { return kChunkedHead + chunks; }

// Fields of `size` bytes in all. REQUIRES: `size` is at least 1000.
std::string Fields(std::size_t size) {
  constexpr std::size_t kLine = 500;
  const std::string line = "X: " + std::string(kLine - 5, 'x') + "\r\n";
  std::string fields;
  while (size - fields.size() >= 2 * kLine) fields += line;
  return fields + "X: " + std::string(size - fields.size() - 5, 'x') + "\r\n";
}

// Replies with a part of `size` bytes.
std::string WithHeaders(std::size_t size) {
  const std::string first = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n";
  return first + Fields(size - first.size() - 2) + "\r\nhello";
}
std::string WithHeadersAndTrailers(std::size_t size) {
  const std::string head = kChunkedHead;
  return head + kChunks + Fields(size - head.size() - 2) + "\r\n";
}
std::string WithHeaderLine(std::size_t size) {
  return "HTTP/1.1 200 OK\r\nContent-Length: 5\r\nX: " + std::string(size - 5, 'x') +
         "\r\n\r\nhello";
}
std::string WithSizeLine(std::size_t size) {
  return Chunked("5;" + std::string(size - 4, 'x') + "\r\nhello\r\n0\r\n\r\n");
}
// Without the line's end.
std::string WithTrailerLine(std::size_t size) {
  return Chunked(kChunks + ("X: " + std::string(size - 3, 'x')) + "\r\n\r\n");
}

class ReplyLimitTest : public TransportTest {
 protected:
  static void ExpectInEveryWay(TransferError reason, const RawServer& server, const char* name) {
    for (const Way way : kAllWays) {
      EXPECT_EQ(ReasonOf(way, server.Url()), reason) << name << ", " << NameOf(way);
    }
  }
};

TEST_F(ReplyLimitTest, IsTheSameInEveryWay) {
  constexpr std::size_t kMaxHead = ResponseHead::kMaxBytes;
  constexpr std::size_t kMaxSize = ChunkDecoder::kMaxSizeLine;
  constexpr std::size_t kMaxTrailer = ChunkDecoder::kMaxTrailerLine;
  const struct {
    const char* name;
    std::string bytes;
    TransferError reason;
  } kReplies[] = {
      {"most headers", WithHeaders(kMaxHead), TransferError::kNone},
      {"too many headers", WithHeaders(kMaxHead + 1), TransferError::kTooLarge},
      {"most trailers", WithHeadersAndTrailers(kMaxHead), TransferError::kNone},
      {"too many trailers", WithHeadersAndTrailers(kMaxHead + 1), TransferError::kTooLarge},
      // The limit of a line is libcurl's, about 100 KiB.
      {"long header line", WithHeaderLine(102'000), TransferError::kNone},
      {"too long header line", WithHeaderLine(103'000), TransferError::kTooLarge},
      {"longest size line", WithSizeLine(kMaxSize), TransferError::kNone},
      {"too long size line", WithSizeLine(kMaxSize + 1), TransferError::kMalformed},
      {"longest trailer line", WithTrailerLine(kMaxTrailer), TransferError::kNone},
      {"too long trailer line", WithTrailerLine(kMaxTrailer + 1), TransferError::kTooLarge},
      {"trailer of several lines", Chunked("0\r\nX: 1\r\n more\r\n\r\n"), TransferError::kNone},
      {"size like a literal", Chunked("0x5\r\nhello\r\n0\r\n\r\n"), TransferError::kMalformed},
      {"no size", Chunked("\r\nhello\r\n0\r\n\r\n"), TransferError::kMalformed},
      {"trailer without colon", Chunked("0\r\ntrailer\r\n\r\n"), TransferError::kMalformed},
      {"trailer without name", Chunked("0\r\n: 1\r\n\r\n"), TransferError::kMalformed},
      {"NUL in a trailer", Chunked("0\r\nX: a\0b\r\n\r\n"s), TransferError::kMalformed},
      {"NUL in a header", "HTTP/1.1 200 OK\r\nX: a\0b\r\n\r\n"s, TransferError::kMalformed},
  };
  for (const auto& [name, bytes, reason] : kReplies) {
    const RawServer server(AlwaysThenClose(bytes));
    ExpectInEveryWay(reason, server, name);
  }
}

TEST_F(ReplyLimitTest, StopsEndlessReplies) {
  const std::string x(100'000, 'x');
  const std::string trailers = Chunked(kChunks);
  const struct {
    const char* name;
    std::string start;
    std::string piece;
  } kReplies[] = {
      {"trailers", trailers, Fields(100'000)},
      {"trailer line", trailers + "X: ", x},
      {"headers", "HTTP/1.1 200 OK\r\n", Fields(100'000)},
      {"header line", "HTTP/1.1 200 OK\r\nX: ", x},
      {"interim responses", "", "HTTP/1.1 103 Early Hints\r\nLink: </a>\r\n\r\n"},
  };
  for (const auto& [name, start, piece] : kReplies) {
    const RawServer server(Endless(start, piece));
    ExpectInEveryWay(TransferError::kTooLarge, server, name);
  }
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
// Limits of a reply. Downloads and uploads have the same.

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

#include "common_stowraapi/platform/http/chunk_decoder.h"
#include "common_stowraapi/platform/http/response_head.h"
#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

using ovrant::internet::ChunkDecoder;
using ovrant::internet::ResponseHead;

constexpr char kChunkedHead[] = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
constexpr char kChunks[] = "5\r\nhello\r\n0\r\n";

// Fields of `size` bytes in all. REQUIRES: `size` is at least 1000.
std::string Fields(std::size_t size) {
  constexpr std::size_t kLine = 500;
  const std::string line = "X: " + std::string(kLine - 5, 'x') + "\r\n";
  std::string fields;
  while (size - fields.size() >= 2 * kLine) fields += line;
  return fields + "X: " + std::string(size - fields.size() - 5, 'x') + "\r\n";
}

using Maker = std::function<std::string()>;

// A reply whose header lines, or header and trailer lines, have `size` bytes in all.
Maker WithHeaders(std::size_t size) {
  return [size] {
    const std::string first = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n";
    return first + Fields(size - first.size() - 2) + "\r\nhello";
  };
}
Maker WithTrailers(std::size_t size) {
  return [size] {
    const std::string head = kChunkedHead;
    return head + kChunks + Fields(size - head.size() - 2) + "\r\n";
  };
}

// A reply with one header line of `size` bytes.
Maker WithHeaderLine(std::size_t size) {
  return [size] {
    return "HTTP/1.1 200 OK\r\nContent-Length: 5\r\nX: " + std::string(size - 5, 'x') +
           "\r\n\r\nhello";
  };
}

// A chunked reply with one trailer line of `size` bytes without its end.
Maker WithTrailerLine(std::size_t size) {
  return [size] {
    return std::string(kChunkedHead) + kChunks + "X: " + std::string(size - 3, 'x') + "\r\n\r\n";
  };
}

// A chunked reply whose first line has `size` bytes.
Maker WithSizeLine(std::size_t size) {
  return [size] {
    return std::string(kChunkedHead) + "5;" + std::string(size - 4, 'x') + "\r\nhello\r\n0\r\n\r\n";
  };
}

Maker Reply(const std::string& bytes) {
  return [bytes] { return bytes; };
}
Maker Chunked(const std::string& body) { return Reply(kChunkedHead + body); }

// Every test of the program has these rows, so a row makes its bytes only when it runs.
struct Case {
  const char* name;
  Maker bytes;
  TransferError reason;
};

void PrintTo(const Case& item, std::ostream* out) { *out << item.name; }

class ReplyLimitTest : public TransportTest, public ::testing::WithParamInterface<Case> {};

TEST_P(ReplyLimitTest, IsTheSameInEveryWay) {
  const RawServer server(AlwaysThenClose(GetParam().bytes()));
  for (const Way way : kAllWays) {
    EXPECT_EQ(ReasonOf(way, server.Url()), GetParam().reason) << NameOf(way);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Replies, ReplyLimitTest,
    ::testing::Values(
        Case{"MostHeaders", WithHeaders(ResponseHead::kMaxBytes), TransferError::kNone},
        Case{"TooManyHeaders", WithHeaders(ResponseHead::kMaxBytes + 1), TransferError::kTooLarge},
        Case{"MostTrailers", WithTrailers(ResponseHead::kMaxBytes), TransferError::kNone},
        Case{"TooManyTrailers", WithTrailers(ResponseHead::kMaxBytes + 1),
             TransferError::kTooLarge},
        // The limit of a line is libcurl's, about 100 KiB.
        Case{"LongHeaderLine", WithHeaderLine(102'000), TransferError::kNone},
        Case{"TooLongHeaderLine", WithHeaderLine(103'000), TransferError::kTooLarge},
        Case{"LongestSizeLine", WithSizeLine(ChunkDecoder::kMaxSizeLine), TransferError::kNone},
        Case{"TooLongSizeLine", WithSizeLine(ChunkDecoder::kMaxSizeLine + 1),
             TransferError::kMalformed},
        Case{"LongestTrailerLine", WithTrailerLine(ChunkDecoder::kMaxTrailerLine),
             TransferError::kNone},
        Case{"TooLongTrailerLine", WithTrailerLine(ChunkDecoder::kMaxTrailerLine + 1),
             TransferError::kTooLarge},
        Case{"TrailerOfSeveralLines", Chunked("0\r\nX: 1\r\n continued\r\n\r\n"),
             TransferError::kNone},
        Case{"SizeLikeALiteral", Chunked("0x5\r\nhello\r\n0\r\n\r\n"), TransferError::kMalformed},
        Case{"NoSize", Chunked("\r\nhello\r\n0\r\n\r\n"), TransferError::kMalformed},
        Case{"TrailerWithoutColon", Chunked("0\r\ntrailer\r\n\r\n"), TransferError::kMalformed},
        Case{"TrailerWithoutName", Chunked("0\r\n: 1\r\n\r\n"), TransferError::kMalformed},
        Case{"NulInATrailer", Chunked(std::string("0\r\nX: a\0b\r\n\r\n", 13)),
             TransferError::kMalformed},
        Case{"NulInAHeader", Reply(std::string("HTTP/1.1 200 OK\r\nX: a\0b\r\n\r\n", 27)),
             TransferError::kMalformed}),
    [](const auto& test) { return test.param.name; });

class EndlessReplyTest : public TransportTest {
 protected:
  // The server sends `start` and then `piece` for ever.
  static void ExpectTooLarge(const std::string& start, const std::string& piece) {
    const RawServer server([&](const RawRequest&, RawConnection& connection) {
      connection.Write(start);
      while (connection.Write(piece)) {
      }
    });
    for (const Way way : kAllWays) {
      EXPECT_EQ(ReasonOf(way, server.Url()), TransferError::kTooLarge) << NameOf(way);
    }
  }
};

TEST_F(EndlessReplyTest, TrailersAreTooLarge) {
  ExpectTooLarge(std::string(kChunkedHead) + kChunks, Fields(100'000));
}

TEST_F(EndlessReplyTest, TrailerLineIsTooLarge) {
  ExpectTooLarge(std::string(kChunkedHead) + kChunks + "X: ", std::string(100'000, 'x'));
}

TEST_F(EndlessReplyTest, HeadersAreTooLarge) {
  ExpectTooLarge("HTTP/1.1 200 OK\r\n", Fields(100'000));
}

TEST_F(EndlessReplyTest, HeaderLineIsTooLarge) {
  ExpectTooLarge("HTTP/1.1 200 OK\r\nX: ", std::string(100'000, 'x'));
}

TEST_F(EndlessReplyTest, InterimResponsesAreTooLarge) {
  ExpectTooLarge("", "HTTP/1.1 103 Early Hints\r\nLink: </a>\r\n\r\n");
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

constexpr TransferError kCutOff = TransferError::kCutOff;
constexpr TransferError kMalformed = TransferError::kMalformed;
constexpr TransferError kEncoding = TransferError::kEncoding;

#define OK "HTTP/1.1 200 OK\r\n"
#define CHUNKED OK "Transfer-Encoding: chunked\r\n\r\n"
#define LENGTH_5 "Content-Length: 5\r\n\r\n"

// A reply after which the server closes.
const struct {
  const char* name;
  std::string bytes;
  int status;
  TransferError reason;
} kBrokenReplies[] = {
    {"nothing", "", 0, kCutOff},
    {"part of the status line", "HTTP/1.1 2", 0, kCutOff},
    {"status line without its end", "HTTP/1.1 200 OK", 0, kCutOff},
    {"status line", OK, 200, kCutOff},
    {"part of a header", OK "Content-Le", 200, kCutOff},
    {"headers without the empty line", OK "Content-Length: 0\r\n", 200, kCutOff},
    {"headers with half the empty line", OK "Content-Length: 0\r\n\r", 200, kCutOff},
    {"interim response", "HTTP/1.1 100 Continue\r\n\r\n", 100, kCutOff},
    {"headers without body", OK LENGTH_5, 200, kCutOff},
    {"body one byte short", "HTTP/1.1 404 No\r\n" LENGTH_5 "hell", 404, kCutOff},
    {"chunked without body", CHUNKED, 200, kCutOff},
    {"chunk size without its end", CHUNKED "5", 200, kCutOff},
    {"chunk cut short", CHUNKED "5\r\nhel", 200, kCutOff},
    {"chunk without its end", CHUNKED "5\r\nhello", 200, kCutOff},
    {"no last chunk", CHUNKED "5\r\nhello\r\n", 200, kCutOff},
    {"last chunk without the end", CHUNKED "5\r\nhello\r\n0\r\n", 200, kCutOff},
    {"trailer cut short", CHUNKED "5\r\nhello\r\n0\r\nX-Trail", 200, kCutOff},
    {"gzip", OK "Content-Encoding: gzip\r\n\r\n" + Gzip("hello").substr(0, 15), 200, kCutOff},
    {"length beyond the body", OK "Content-Length: 9223372036854775807\r\n\r\nhello", 200, kCutOff},

    {"no HTTP", "hello\r\n\r\n", 0, kMalformed},
    {"HTTP/0.9", "<html></html>", 0, kMalformed},
    {"other protocol", "220 smtp.example ESMTP\r\n\r\n", 0, kMalformed},
    {"status of four digits", "HTTP/1.1 2000 OK\r\n" LENGTH_5 "hello", 0, kMalformed},
    {"no version", "HTTP//1.1 200 OK\r\n" LENGTH_5 "hello", 0, kMalformed},
    {"header without colon", OK "header\r\n\r\n", 200, kMalformed},
    {"two lengths", OK "Content-Length: 3\r\n" LENGTH_5 "hello", 200, kMalformed},
    {"two lengths in a list", OK "Content-Length: 5, 3\r\n\r\nhello", 200, kMalformed},
    {"negative length", OK "Content-Length: -5\r\n\r\nhello", 200, kMalformed},
    {"length that is no number", OK "Content-Length: five\r\n\r\nhello", 200, kMalformed},
    {"length beyond all numbers", OK "Content-Length: 99999999999999999999999\r\n\r\n", 200,
     kMalformed},
    {"chunk size that is no number", CHUNKED "xyz\r\nhello\r\n0\r\n\r\n", 200, kMalformed},
    {"chunk size beyond all numbers", CHUNKED "fffffffffffffffff\r\nhello\r\n", 200, kMalformed},
    {"chunk longer than its size", CHUNKED "3\r\nhello\r\n0\r\n\r\n", 200, kMalformed},
    {"corrupt gzip", OK "Content-Encoding: gzip\r\n" LENGTH_5 "hello", 200, kMalformed},
    {"bad location", Redirect(302, "http://:80:80/"), 302, kMalformed},
    {"content encoding", OK "Content-Encoding: br\r\n" LENGTH_5 "hello", 200, kEncoding},
    {"transfer encoding", OK "Transfer-Encoding: gzip\r\n\r\nhello", 200, kEncoding},
    {"unknown transfer encoding", OK "Transfer-Encoding: rot13\r\n\r\nhello", 200, kEncoding},
};

class BrokenResponseTest : public TransportTest {};

TEST_F(BrokenResponseTest, IsAFailureInEveryWay) {
  for (const auto& [name, bytes, status, reason] : kBrokenReplies) {
    const RawServer server(AlwaysThenClose(bytes));
    for (const Way way : kAllWays) {
      EXPECT_EQ(AskForReason(way, server.Url(), "data"), Failed(status, reason))
          << name << ", " << NameOf(way);
    }
  }
}

TEST_F(BrokenResponseTest, IsAFailureWhenTheConnectionIsReset) {
  for (const auto& reply : kBrokenReplies) {
    const RawServer server([&](const RawRequest&, RawConnection& connection) {
      connection.Write(reply.bytes);
      connection.Reset();
    });
    EXPECT_FALSE(Fetch(server.Url()).received) << reply.name;
  }
}

class OddResponseTest : public TransportTest {};

TEST_F(OddResponseTest, AcceptsTheSameLengthTwice) {
  for (const char* lengths :
       {"Content-Length: 5\r\nContent-Length: 5\r\n", "Content-Length: 5, 5\r\n"}) {
    const RawServer server(Always(std::string(OK) + lengths + "\r\nhello"));
    EXPECT_EQ(Fetch(server.Url()), Received(200, "hello")) << lengths;
  }
}

TEST_F(OddResponseTest, TrailerLikeAStatusLineIsATrailer) {
  const RawServer server(
      Always(CHUNKED "5\r\nhello\r\n0\r\nHTTP/1.1 404 Not: Found\r\nX-Trailer: 1\r\n\r\n"));
  EXPECT_EQ(Fetch(server.Url()), Received(200, "hello"));
}

}  // namespace
}  // namespace stowra_test

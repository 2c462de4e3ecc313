// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

#include "common_stowraapi/platform/http/reply_decoder.h"
#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/handlers.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

using ovrant::internet::ReplyDecoder;

constexpr unsigned long kCap = 10'000;
constexpr unsigned long kMebibyte = 1UL << 20;
constexpr unsigned long kDefaultCap = 256 * kMebibyte;

// A response whose body is encoded or framed so.
std::string Plain(const std::string& body) { return Response(200, body); }
std::string EndedByClose(const std::string& body) { return "HTTP/1.1 200 OK\r\n\r\n" + body; }
std::string Chunked(const std::string& body) {
  char size[20];
  std::snprintf(size, sizeof(size), "%zx\r\n", body.size());
  return "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + (size + body) + "\r\n0\r\n\r\n";
}
std::string Gzipped(const std::string& body) { return Response(200, Gzip(body), kGzipHeader); }

class BodyCapTest : public TransportTest {
 protected:
  static void ExpectInAllWays(TransferError reason, const RawServer& server) {
    for (const Way way : kAllWays) EXPECT_EQ(ReasonOf(way, server.Url()), reason) << NameOf(way);
  }
};

TEST_F(BodyCapTest, CountsDecodedBytesExactlyInEveryFraming) {
  SetBodyCap(kCap);
  const std::string body(kCap, 'x');
  const struct {
    const char* name;
    std::string (*respond)(const std::string& body);
  } kFramings[] = {
      {"length", Plain}, {"close", EndedByClose}, {"chunks", Chunked}, {"gzip", Gzipped}};
  for (const auto& framing : kFramings) {
    const RawServer fits(AlwaysThenClose(framing.respond(body)));
    EXPECT_EQ(Get(fits.Url()), Received(200, body)) << framing.name;
    const RawServer too_large(AlwaysThenClose(framing.respond(body + "x")));
    EXPECT_EQ(Get(too_large.Url()), Failed(200, TransferError::kTooLarge)) << framing.name;
  }
}

// gzip stores such a body with a few bytes more.
TEST_F(BodyCapTest, AllowsIncompressibleGzipAtTheCap) {
  for (const unsigned long cap : {kCap, 4 * kMebibyte}) {
    const std::string body = Incompressible(cap);
    const std::string gzip = Gzip(body);
    ASSERT_GT(gzip.size(), cap);
    SetBodyCap(cap);
    const RawServer server(Always(Response(200, gzip, kGzipHeader)));
    for (const Way way : kAllWays) {
      EXPECT_EQ(Ask(way, server.Url(), "data"), Received(200, body)) << NameOf(way);
    }
    SetBodyCap(cap - 1);
    ExpectInAllWays(TransferError::kTooLarge, server);
  }
}

// No machine has as much memory.
TEST_F(BodyCapTest, DoesNotReserveAHugeLength) {
  const RawServer server(
      AlwaysThenClose("HTTP/1.1 200 OK\r\nContent-Length: 9000000000000000000\r\n\r\nhello"));
  for (const unsigned long cap : {kCap, std::numeric_limits<unsigned long>::max()}) {
    SetBodyCap(cap);
    ExpectInAllWays(TransferError::kCutOff, server);
  }
}

TEST_F(BodyCapTest, StopsAnEndlessBody) {
  SetBodyCap(kMebibyte);
  const RawServer server(Endless("HTTP/1.1 200 OK\r\n\r\n"));
  EXPECT_EQ(Get(server.Url()), Failed(200, TransferError::kTooLarge));
}

TEST_F(BodyCapTest, DoesNotAddTheBodyOfARedirect) {
  SetBodyCap(kCap);
  const std::string body(kCap, 'x');
  const RawServer server(
      FirstThen(Response(302, body, "Location: /next\r\n"), Response(200, body)));
  EXPECT_EQ(Get(server.Url()), Received(200, body));
}

TEST_F(BodyCapTest, HoldsForTheBodyOfARedirect) {
  SetBodyCap(kCap);
  const RawServer server(
      Endless("HTTP/1.1 302 Found\r\nLocation: /next\r\nTransfer-Encoding: chunked\r\n\r\n",
              "100000\r\n" + std::string(kMebibyte, 'x') + "\r\n"));
  EXPECT_EQ(Get(server.Url()), Failed(302, TransferError::kTooLarge));
  EXPECT_EQ(LastRequest(server).target, "/");
}

TEST_F(BodyCapTest, IsReadWhenTheTransferStarts) {
  Event answer;
  const RawServer server(AnswerAfter(answer, Response(200, std::string(kCap + 1, 'x'))));
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  SetBodyCap(kCap);
  answer.Set();
  EXPECT_EQ(background.WaitForEnd(), kReturned);
}

TEST_F(BodyCapTest, DefaultsTo256Mebibytes) {
  const std::string body = Repeated(Gzip(std::string(kMebibyte, '\0')), kDefaultCap / kMebibyte);
  const RawServer server(
      FirstThen(Response(200, body, kGzipHeader), Response(200, body + Gzip("x"), kGzipHeader)));
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(transport.received_data_length(), kDefaultCap);
  InternetData beyond(Text(server.Url("/beyond")));
  EXPECT_FALSE(beyond.Download());
}

// A decoder that has the head of a gzip reply, whose body may be a little longer than the cap.
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
  for (const std::size_t cap : {std::size_t{4096}, std::size_t{16 * kMebibyte}}) {
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
  const std::string body = Incompressible(kMebibyte + kMebibyte / 8);
  for (const std::size_t cap : {SIZE_MAX / 1025 * 1024, SIZE_MAX}) {
    GzipReply reply(cap);
    EXPECT_TRUE(reply.decoder.AddBody(Gzip(body))) << cap;
    EXPECT_TRUE(reply.Body() == body) << cap;
  }
}

}  // namespace
}  // namespace stowra_test

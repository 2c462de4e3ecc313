// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

constexpr unsigned long kCap = 10'000;
constexpr unsigned long kMebibyte = 1UL << 20;
constexpr unsigned long kDefaultCap = 256 * kMebibyte;

constexpr char kGzipHeader[] = "Content-Encoding: gzip\r\n";

std::string Chunked(const std::string& body) {
  char size[20];
  std::snprintf(size, sizeof(size), "%zx\r\n", body.size());
  return "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + (size + body) + "\r\n0\r\n\r\n";
}

class BodyCapTest : public TransportTest {
 protected:
  // Whether a download of `response` succeeds with a cap of kCap bytes. Expects a body of `length`
  // then.
  static bool Passes(const std::string& response, unsigned long length) {
    SetBodyCap(kCap);
    const RawServer server(AlwaysThenClose(response));
    InternetData transport(Text(server.Url()));
    const bool received = transport.Download();
    EXPECT_EQ(transport.status_code(), 200);
    EXPECT_EQ(transport.received_data_length(), received ? length : 0);
    return received;
  }
};

TEST_F(BodyCapTest, HoldsForABodyOfKnownLength) {
  EXPECT_TRUE(Passes(Response(200, std::string(kCap, 'x')), kCap));
  EXPECT_FALSE(Passes(Response(200, std::string(kCap + 1, 'x')), 0));
}

TEST_F(BodyCapTest, HoldsForABodyEndedByClose) {
  const std::string head = "HTTP/1.1 200 OK\r\n\r\n";
  EXPECT_TRUE(Passes(head + std::string(kCap, 'x'), kCap));
  EXPECT_FALSE(Passes(head + std::string(kCap + 1, 'x'), 0));
}

TEST_F(BodyCapTest, HoldsForAChunkedBody) {
  EXPECT_TRUE(Passes(Chunked(std::string(kCap, 'x')), kCap));
  EXPECT_FALSE(Passes(Chunked(std::string(kCap + 1, 'x')), 0));
}

TEST_F(BodyCapTest, CountsDecodedBytes) {
  EXPECT_TRUE(Passes(Response(200, Gzip(std::string(kCap, 'x')), kGzipHeader), kCap));
  EXPECT_FALSE(Passes(Response(200, Gzip(std::string(kCap + 1, 'x')), kGzipHeader), 0));
}

TEST_F(BodyCapTest, AllowsGzipLongerThanItsContent) {
  const std::string member = Gzip("x");
  std::string members;
  for (unsigned long i = 0; i < kCap; ++i) members += member;
  EXPECT_TRUE(Passes(Response(200, members, kGzipHeader), kCap));
}

// gzip stores such a body with a few bytes more.
TEST_F(BodyCapTest, AllowsIncompressibleGzipAtTheCap) {
  for (const unsigned long cap : {kCap, 4 * kMebibyte}) {
    std::mt19937 random;
    std::string body(cap, '\0');
    for (char& byte : body) byte = static_cast<char>(random());
    const std::string gzip = Gzip(body);
    ASSERT_GT(gzip.size(), cap);
    SetBodyCap(cap);
    const RawServer server(Always(Response(200, gzip, kGzipHeader)));
    for (const Way way : kAllWays) {
      EXPECT_EQ(Ask(way, server.Url(), "data"), (Answer{true, 200, body})) << NameOf(way);
    }
    SetBodyCap(cap - 1);
    for (const Way way : kAllWays) {
      EXPECT_EQ(ReasonOf(way, server.Url()), TransferError::kTooLarge) << NameOf(way);
    }
  }
}

TEST_F(BodyCapTest, StopsAnEndlessNameInAGzipHeader) {
  SetBodyCap(kCap);
  // The flag 8 says that a file name follows (RFC 1952, 2.3.1).
  const std::string start("\x1F\x8B\x08\x08\0\0\0\0\0\xFF", 10);
  const RawServer server([&start](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\n" + std::string(kGzipHeader) + "\r\n" + start);
    while (connection.Write(std::string(kMebibyte, 'x'))) {
    }
  });
  for (const Way way : kAllWays) {
    EXPECT_EQ(ReasonOf(way, server.Url()), TransferError::kTooLarge) << NameOf(way);
  }
}

// No machine has as much memory.
constexpr char kCutOffHugeBody[] =
    "HTTP/1.1 200 OK\r\nContent-Length: 9000000000000000000\r\n\r\nhello";

TEST_F(BodyCapTest, DoesNotReserveALengthBeyondTheCap) {
  SetBodyCap(kCap);
  const RawServer server(AlwaysThenClose(kCutOffHugeBody));
  InternetData transport(Text(server.Url()));
  EXPECT_FALSE(transport.Download());
  ExpectFailureState(transport, 200);
  for (const Way way : kAllWays) {
    EXPECT_EQ(ReasonOf(way, server.Url()), TransferError::kCutOff) << NameOf(way);
  }
}

TEST_F(BodyCapTest, ReservesLittleForAHugeLengthWithoutACap) {
  SetBodyCap(std::numeric_limits<unsigned long>::max());
  const RawServer server(AlwaysThenClose(kCutOffHugeBody));
  for (const Way way : kAllWays) {
    EXPECT_EQ(ReasonOf(way, server.Url()), TransferError::kCutOff) << NameOf(way);
  }
}

TEST_F(BodyCapTest, StopsAnEndlessBody) {
  SetBodyCap(kMebibyte);
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    const std::string piece(kMebibyte, 'x');
    connection.Write("HTTP/1.1 200 OK\r\n\r\n");
    while (connection.Write(piece)) {
    }
  });
  InternetData transport(Text(server.Url()));
  EXPECT_FALSE(transport.Download());
  ExpectFailureState(transport, 200);
}

TEST_F(BodyCapTest, StopsAGzipBombAtTheCap) {
  SetBodyCap(kMebibyte);
  std::atomic<unsigned long> most{0};
  InternetData::SetTransferListener([&most](const TransferEvent& event) {
    if (event.bytes_received > most) most = event.bytes_received;
  });
  const RawServer server(
      Always(Response(200, Gzip(std::string(64 * kMebibyte, '\0')), kGzipHeader)));
  InternetData transport(Text(server.Url()));
  EXPECT_FALSE(transport.Download());
  ExpectFailureState(transport, 200);
  EXPECT_LE(most, kMebibyte + 1);
}

TEST_F(BodyCapTest, DoesNotAddTheBodyOfARedirect) {
  SetBodyCap(kCap);
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.target == "/"
                         ? Response(302, std::string(kCap, 'r'), "Location: /next\r\n")
                         : Response(200, std::string(kCap, 'x')));
  });
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_TRUE(BodyOf(transport) == std::string(kCap, 'x'));
}

TEST_F(BodyCapTest, HoldsForTheBodyOfARedirect) {
  SetBodyCap(kCap);
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    const std::string piece = "100000\r\n" + std::string(kMebibyte, 'x') + "\r\n";
    connection.Write("HTTP/1.1 302 Found\r\nLocation: /next\r\nTransfer-Encoding: chunked\r\n\r\n");
    while (connection.Write(piece)) {
    }
  });
  InternetData transport(Text(server.Url()));
  EXPECT_FALSE(transport.Download());
  ExpectFailureState(transport, 302);
  EXPECT_EQ(LastRequest(server).target, "/");
}

TEST_F(BodyCapTest, ResettingTheCapRestoresTheDefault) {
  SetBodyCap(kCap);
  InternetData::SetDefaults(TransferDefaults());
  const RawServer server(Always(Response(200, std::string(kCap + 1, 'x'))));
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
}

TEST_F(BodyCapTest, IsReadWhenTheTransferStarts) {
  Event answer;
  const RawServer server([&answer](const RawRequest&, RawConnection& connection) {
    EXPECT_TRUE(answer.Wait());
    connection.Write(Response(200, std::string(kCap + 1, 'x')));
  });
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  SetBodyCap(kCap);
  answer.Set();
  EXPECT_EQ(background.WaitForEnd(), kReturned);
}

TEST_F(BodyCapTest, DefaultsTo256Mebibytes) {
  const std::string member = Gzip(std::string(kMebibyte, '\0'));
  std::string body;
  for (unsigned long i = 0; i < kDefaultCap / kMebibyte; ++i) body += member;
  const RawServer server([&body](const RawRequest& request, RawConnection& connection) {
    connection.Write(Response(200, request.target == "/" ? body : body + Gzip("x"), kGzipHeader));
  });
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(transport.received_data_length(), kDefaultCap);
  InternetData beyond(Text(server.Url("/beyond")));
  EXPECT_FALSE(beyond.Download());
}

}  // namespace
}  // namespace stowra_test

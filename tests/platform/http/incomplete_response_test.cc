// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

struct Case {
  const char* name;
  const char* bytes;
  int status;
};

void PrintTo(const Case& item, std::ostream* out) { *out << item.name; }

class IncompleteResponseTest : public TransportTest, public ::testing::WithParamInterface<Case> {};

TEST_P(IncompleteResponseTest, IsAFailureInEveryWay) {
  const RawServer server(AlwaysThenClose(GetParam().bytes));
  for (const Way way : kAllWays) {
    EXPECT_EQ(Ask(way, server.Url(), "data"), (Answer{false, GetParam().status, ""}))
        << NameOf(way);
  }
}

TEST_P(IncompleteResponseTest, IsAFailureWhenTheConnectionIsReset) {
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write(GetParam().bytes);
    connection.Reset();
  });
  InternetData transport(Text(server.Url()));
  EXPECT_FALSE(transport.Download());
  EXPECT_EQ(transport.received_data(), nullptr);
  EXPECT_EQ(transport.received_data_length(), 0U);
}

#define CHUNKED "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"

INSTANTIATE_TEST_SUITE_P(
    Responses, IncompleteResponseTest,
    ::testing::Values(
        Case{"Nothing", "", 0}, Case{"PartOfTheStatusLine", "HTTP/1.1 2", 0},
        Case{"StatusLineWithoutItsEnd", "HTTP/1.1 200 OK", 0},
        Case{"StatusLine", "HTTP/1.1 200 OK\r\n", 200},
        Case{"PartOfAHeader", "HTTP/1.1 200 OK\r\nContent-Le", 200},
        Case{"HeadersWithoutTheEmptyLine", "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n", 200},
        Case{"HeadersWithHalfTheEmptyLine", "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r", 200},
        Case{"InterimResponse", "HTTP/1.1 100 Continue\r\n\r\n", 100},
        Case{"HeadersWithoutBody", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n", 200},
        Case{"BodyOneByteShort", "HTTP/1.1 404 No\r\nContent-Length: 5\r\n\r\nhell", 404},
        Case{"ChunkedWithoutBody", CHUNKED, 200}, Case{"ChunkSizeWithoutItsEnd", CHUNKED "5", 200},
        Case{"ChunkCutShort", CHUNKED "5\r\nhel", 200},
        Case{"ChunkWithoutItsEnd", CHUNKED "5\r\nhello", 200},
        Case{"NoLastChunk", CHUNKED "5\r\nhello\r\n", 200},
        Case{"LastChunkWithoutTheEnd", CHUNKED "5\r\nhello\r\n0\r\n", 200},
        Case{"TrailerCutShort", CHUNKED "5\r\nhello\r\n0\r\nX-Trail", 200}),
    [](const auto& test) { return test.param.name; });

class InvalidResponseTest : public TransportTest, public ::testing::WithParamInterface<Case> {};

TEST_P(InvalidResponseTest, IsAFailure) {
  const RawServer server(AlwaysThenClose(GetParam().bytes));
  InternetData transport(Text(server.Url()));
  EXPECT_FALSE(transport.Download());
  ExpectFailureState(transport, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(
    Responses, InvalidResponseTest,
    ::testing::Values(
        Case{"NoHttp", "hello\r\n\r\n", 0}, Case{"Http09", "<html></html>", 0},
        Case{"OtherProtocol", "220 smtp.example ESMTP\r\n\r\n", 0},
        Case{"TwoLengths", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\nContent-Length: 3\r\n\r\nhello",
             200},
        Case{"NegativeLength", "HTTP/1.1 200 OK\r\nContent-Length: -5\r\n\r\nhello", 200},
        Case{"LengthNoNumber", "HTTP/1.1 200 OK\r\nContent-Length: five\r\n\r\nhello", 200},
        Case{"TwoLengthsInAList", "HTTP/1.1 200 OK\r\nContent-Length: 5, 3\r\n\r\nhello", 200},
        Case{"LengthBeyondTheBody",
             "HTTP/1.1 200 OK\r\nContent-Length: 9223372036854775807\r\n\r\nhello", 200},
        Case{"LengthBeyondAllNumbers",
             "HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999999\r\n\r\nhel", 200},
        Case{"ChunkSizeNoNumber", CHUNKED "xyz\r\nhello\r\n0\r\n\r\n", 200},
        Case{"ChunkSizeBeyondAllNumbers", CHUNKED "fffffffffffffffff\r\nhello\r\n0\r\n\r\n", 200},
        Case{"ChunkLongerThanItsSize", CHUNKED "3\r\nhello\r\n0\r\n\r\n", 200},
        Case{"UnknownTransferEncoding", "HTTP/1.1 200 OK\r\nTransfer-Encoding: rot13\r\n\r\nhello",
             200},
        Case{"StatusOfFourDigits", "HTTP/1.1 2000 OK\r\nContent-Length: 5\r\n\r\nhello", 0},
        Case{"NoVersion", "HTTP//1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello", 0}),
    [](const auto& test) { return test.param.name; });

class OddResponseTest : public TransportTest {};

TEST_F(OddResponseTest, AcceptsTheSameLengthTwice) {
  for (const char* lengths :
       {"Content-Length: 5\r\nContent-Length: 5\r\n", "Content-Length: 5, 5\r\n"}) {
    const RawServer server(Always(std::string("HTTP/1.1 200 OK\r\n") + lengths + "\r\nhello"));
    InternetData transport(Text(server.Url()));
    EXPECT_TRUE(transport.Download()) << lengths;
    EXPECT_EQ(BodyOf(transport), "hello");
  }
}

TEST_F(OddResponseTest, TrailerLikeAStatusLineIsATrailer) {
  const RawServer server(
      Always(CHUNKED "5\r\nhello\r\n0\r\nHTTP/1.1 404 Not: Found\r\nX-Trailer: 1\r\n\r\n"));
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(transport.status_code(), 200);
  EXPECT_EQ(BodyOf(transport), "hello");
}

TEST_F(OddResponseTest, SurvivesALeadingFoldedLine) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.target == "/folded"
                         ? "HTTP/1.1 200 OK\r\n folded: " + std::string(100, 'x') +
                               "\r\nContent-Length: 0\r\n\r\n"
                         : Response(200, "hello", "X-Long: " + std::string(100, 'x') + "\r\n"));
  });
  for (int i = 0; i < 3; ++i) {
    InternetData good(Text(server.Url("/good")));
    EXPECT_TRUE(good.Download());
    EXPECT_EQ(BodyOf(good), "hello");
    // Either outcome is allowed.
    InternetData folded(Text(server.Url("/folded")));
    folded.Download();
  }
}

}  // namespace
}  // namespace stowra_test

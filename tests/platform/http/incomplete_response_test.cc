// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

struct Case {
  const char* name;
  const char* bytes;
  int status;
};

class IncompleteResponseTest : public TransportTest, public ::testing::WithParamInterface<Case> {};

TEST_P(IncompleteResponseTest, IsAFailureInEveryWay) {
  const RawServer server(AlwaysThenClose(GetParam().bytes));
  for (const Way way : kAllWays) {
    EXPECT_EQ(Ask(way, server.Url(), "data"), NotReceived(GetParam().status)) << NameOf(way);
  }
}

TEST_P(IncompleteResponseTest, IsAFailureWhenTheConnectionIsReset) {
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write(GetParam().bytes);
    connection.Reset();
  });
  EXPECT_FALSE(Fetch(server.Url()).received);
}

#define OK "HTTP/1.1 200 OK\r\n"
#define CHUNKED OK "Transfer-Encoding: chunked\r\n\r\n"

INSTANTIATE_TEST_SUITE_P(
    Responses, IncompleteResponseTest,
    ::testing::Values(Case{"Nothing", "", 0}, Case{"PartOfTheStatusLine", "HTTP/1.1 2", 0},
                      Case{"StatusLineWithoutItsEnd", "HTTP/1.1 200 OK", 0},
                      Case{"StatusLine", OK, 200}, Case{"PartOfAHeader", OK "Content-Le", 200},
                      Case{"HeadersWithoutTheEmptyLine", OK "Content-Length: 0\r\n", 200},
                      Case{"HeadersWithHalfTheEmptyLine", OK "Content-Length: 0\r\n\r", 200},
                      Case{"InterimResponse", "HTTP/1.1 100 Continue\r\n\r\n", 100},
                      Case{"HeadersWithoutBody", OK "Content-Length: 5\r\n\r\n", 200},
                      Case{"BodyOneByteShort", "HTTP/1.1 404 No\r\nContent-Length: 5\r\n\r\nhell",
                           404},
                      Case{"ChunkedWithoutBody", CHUNKED, 200},
                      Case{"ChunkSizeWithoutItsEnd", CHUNKED "5", 200},
                      Case{"ChunkCutShort", CHUNKED "5\r\nhel", 200},
                      Case{"ChunkWithoutItsEnd", CHUNKED "5\r\nhello", 200},
                      Case{"NoLastChunk", CHUNKED "5\r\nhello\r\n", 200},
                      Case{"LastChunkWithoutTheEnd", CHUNKED "5\r\nhello\r\n0\r\n", 200},
                      Case{"TrailerCutShort", CHUNKED "5\r\nhello\r\n0\r\nX-Trail", 200}),
    RowName());

class InvalidResponseTest : public TransportTest, public ::testing::WithParamInterface<Case> {};

TEST_P(InvalidResponseTest, IsAFailure) {
  const RawServer server(AlwaysThenClose(GetParam().bytes));
  EXPECT_EQ(Fetch(server.Url()), NotReceived(GetParam().status));
}

INSTANTIATE_TEST_SUITE_P(
    Responses, InvalidResponseTest,
    ::testing::Values(
        Case{"NoHttp", "hello\r\n\r\n", 0}, Case{"Http09", "<html></html>", 0},
        Case{"OtherProtocol", "220 smtp.example ESMTP\r\n\r\n", 0},
        Case{"TwoLengths", OK "Content-Length: 5\r\nContent-Length: 3\r\n\r\nhello", 200},
        Case{"NegativeLength", OK "Content-Length: -5\r\n\r\nhello", 200},
        Case{"LengthNoNumber", OK "Content-Length: five\r\n\r\nhello", 200},
        Case{"TwoLengthsInAList", OK "Content-Length: 5, 3\r\n\r\nhello", 200},
        Case{"LengthBeyondTheBody", OK "Content-Length: 9223372036854775807\r\n\r\nhello", 200},
        Case{"LengthBeyondAllNumbers", OK "Content-Length: 99999999999999999999999\r\n\r\nhel",
             200},
        Case{"ChunkSizeNoNumber", CHUNKED "xyz\r\nhello\r\n0\r\n\r\n", 200},
        Case{"ChunkSizeBeyondAllNumbers", CHUNKED "fffffffffffffffff\r\nhello\r\n0\r\n\r\n", 200},
        Case{"ChunkLongerThanItsSize", CHUNKED "3\r\nhello\r\n0\r\n\r\n", 200},
        Case{"UnknownTransferEncoding", OK "Transfer-Encoding: rot13\r\n\r\nhello", 200},
        Case{"StatusOfFourDigits", "HTTP/1.1 2000 OK\r\nContent-Length: 5\r\n\r\nhello", 0},
        Case{"NoVersion", "HTTP//1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello", 0}),
    RowName());

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

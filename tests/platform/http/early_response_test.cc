// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <chrono>
#include <ostream>
#include <string>

#include "tests/faults/ask.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

// A transfer that waits for the rest of its upload fails after this time.
constexpr float kTimeout = 10;

struct Early {
  const char* name;
  std::string response;
  int status;
  const char* body;
};

void PrintTo(const Early& early, std::ostream* out) { *out << early.name; }

// The server answers after the headers of a large upload and does not read the body.
class EarlyResponseTest : public TransportTest, public ::testing::WithParamInterface<Early> {
 protected:
  EarlyResponseTest() { SetInactivityTimeout(kTimeout); }

  const RawServer server_{[](const RawRequest&, RawConnection& connection) {
                            connection.Write(GetParam().response);
                            connection.StallWithoutReading();
                          },
                          {nullptr, false, 4096}};
};

TEST_P(EarlyResponseTest, IsReceivedSynchronously) {
  InternetData transport(Text("none:"));
  SetSendData(std::string(kLargeBody, 'x'), transport);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_TRUE(Post(server_.Url(), transport));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, kSoon);
  EXPECT_EQ(transport.status_code(), GetParam().status);
  EXPECT_EQ(BodyOf(transport), GetParam().body);
}

TEST_P(EarlyResponseTest, IsReceivedInTheBackground) {
  Background background(server_.Url());
  SetSendData(std::string(kLargeBody, 'x'), *background.transport);
  const auto begin = std::chrono::steady_clock::now();
  ASSERT_TRUE(background.transport->UploadWithDelegate(background.delegate.get(), nullptr));
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, kSoon);
  EXPECT_EQ(background.transport->status_code(), GetParam().status);
  EXPECT_EQ(BodyOf(*background.transport), GetParam().body);
}

TEST_P(EarlyResponseTest, DoesNotReuseItsConnection) {
  for (int i = 0; i < 2; ++i) {
    InternetData transport(Text("none:"));
    SetSendData(std::string(kLargeBody, 'x'), transport);
    EXPECT_TRUE(Post(server_.Url(), transport));
  }
  EXPECT_EQ(server_.connections(), 2);
}

INSTANTIATE_TEST_SUITE_P(
    Responses, EarlyResponseTest,
    ::testing::Values(
        Early{"Success", Response(200, "hello"), 200, "hello"},
        Early{"EmptySuccess", Response(200, ""), 200, ""},
        Early{"NoContent", "HTTP/1.1 204 Text\r\n\r\n", 204, ""},
        Early{"Refusal", Response(413, "too large"), 413, "too large"},
        Early{"ServerError", Response(500, "sorry", "Connection: close\r\n"), 500, "sorry"},
        Early{"Gzip", Response(200, Gzip("hello"), "Content-Encoding: gzip\r\n"), 200, "hello"},
        Early{"Chunked",
              "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n\r\n", 200,
              "hello"},
        Early{"ChunkedRefusal",
              "HTTP/1.1 413 No\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n\r\n", 413,
              "hello"}),
    [](const auto& test) { return test.param.name; });

class EarlyEndTest : public TransportTest {};

TEST_F(EarlyEndTest, FollowsARedirectBeforeTheEndOfTheUpload) {
  SetInactivityTimeout(kTimeout);
  const RawServer other(Always(Response(200, "hello")));
  for (const char* headers : {"", "Connection: close\r\n"}) {
    const RawServer server(
        [&](const RawRequest&, RawConnection& connection) {
          connection.Write(Response(302, "moved", headers + ("Location: " + other.Url()) + "\r\n"));
          connection.StallWithoutReading();
        },
        {nullptr, false, 4096});
    for (const Way way : {Way::kSendAndRead, Way::kUploadWithDelegate, Way::kUploadFrom}) {
      const auto begin = std::chrono::steady_clock::now();
      EXPECT_EQ(Ask(way, server.Url(), std::string(kLargeBody, 'x')), (Answer{true, 200, "hello"}));
      EXPECT_LT(std::chrono::steady_clock::now() - begin, kSoon);
      EXPECT_EQ(LastRequest(other).method, "GET");
    }
  }
}

TEST_F(EarlyEndTest, RefusesCutChunksDespiteContentLength) {
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) {
        connection.Write(
            "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nContent-Length: 5\r\n\r\n"
            "5\r\nhello\r\n");
        connection.Close();
      },
      {nullptr, false, 0});
  InternetData transport(Text("none:"));
  SetSendData(std::string(kLargeBody, 'x'), transport);
  EXPECT_FALSE(Post(server.Url(), transport));
  ExpectFailureState(transport, 200);
}

TEST_F(EarlyEndTest, AcceptsBodyEndedByClose) {
  // The upload does not matter, because the server has closed its direction in order.
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) {
        connection.Write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nhello");
        connection.Close();
      },
      {nullptr, false, 0});
  InternetData transport(Text("none:"));
  SetSendData(std::string(kLargeBody, 'x'), transport);
  EXPECT_TRUE(Post(server.Url(), transport));
  EXPECT_EQ(BodyOf(transport), "hello");
}

TEST_F(EarlyEndTest, AcceptsBodyEndedByCloseWhileTheUploadStalls) {
  SetInactivityTimeout(kTimeout);
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) {
        connection.Write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nhello");
        connection.EndWriting();
        connection.StallWithoutReading();
      },
      {nullptr, false, 4096});
  InternetData transport(Text("none:"));
  SetSendData(std::string(kLargeBody, 'x'), transport);
  EXPECT_TRUE(Post(server.Url(), transport));
  EXPECT_EQ(BodyOf(transport), "hello");
}

TEST_F(EarlyEndTest, RefusesAnIncompleteResponse) {
  SetInactivityTimeout(0.3F);
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) {
        connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nhello");
        connection.StallWithoutReading();
      },
      {nullptr, false, 4096});
  InternetData transport(Text("none:"));
  SetSendData(std::string(kLargeBody, 'x'), transport);
  EXPECT_FALSE(Post(server.Url(), transport));
  ExpectFailureState(transport, 200);
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/handlers.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

// A transfer that waits for the rest of its upload fails after this time.
constexpr float kTimeout = 25;

class EarlyEndTest : public TransportTest {
 protected:
  EarlyEndTest() { SetInactivityTimeout(kTimeout); }

  // Makes a large upload, which must end soon.
  static Answer Upload(Way way, const std::string& url) {
    const auto begin = std::chrono::steady_clock::now();
    Answer answer = AskForReason(way, url, std::string(kLargeBody, 'x'));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, kPatience);
    return answer;
  }
};

struct Early {
  const char* name;
  std::string response;
  int status;
  const char* body;
};

class EarlyResponseTest : public EarlyEndTest, public testing::WithParamInterface<Early> {};

// The server answers after the headers of a large upload and does not read the body.
TEST_P(EarlyResponseTest, IsReceivedAndItsConnectionNotReused) {
  const RawServer server(AnswerUnread(GetParam().response), kUnread);
  for (const Way way : {Way::kSendAndRead, Way::kSendAndRead, Way::kUploadWithDelegate}) {
    EXPECT_EQ(Upload(way, server.Url()), Received(GetParam().status, GetParam().body))
        << NameOf(way);
  }
  EXPECT_EQ(server.connections(), 3);
}

INSTANTIATE_TEST_SUITE_P(
    Responses, EarlyResponseTest,
    testing::Values(
        Early{"Success", Response(200, "hello"), 200, "hello"},
        Early{"EmptySuccess", Response(200, ""), 200, ""},
        Early{"NoContent", "HTTP/1.1 204 Text\r\n\r\n", 204, ""},
        Early{"Refusal", Response(413, "too large"), 413, "too large"},
        Early{"ServerError", Response(500, "sorry", "Connection: close\r\n"), 500, "sorry"},
        Early{"Gzip", Response(200, Gzip("hello"), kGzipHeader), 200, "hello"},
        Early{"Chunked",
              "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n\r\n", 200,
              "hello"},
        Early{"ChunkedRefusal",
              "HTTP/1.1 413 No\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n\r\n", 413,
              "hello"}),
    RowName());

TEST_F(EarlyEndTest, FollowsARedirectBeforeTheEndOfTheUpload) {
  const RawServer other(Always(Response(200, "hello")));
  for (const char* headers : {"", "Connection: close\r\n"}) {
    const RawServer server(
        AnswerUnread(Response(302, "moved", headers + ("Location: " + other.Url()) + "\r\n")),
        kUnread);
    for (const Way way : {Way::kSendAndRead, Way::kUploadWithDelegate, Way::kUploadFrom}) {
      EXPECT_EQ(Upload(way, server.Url()), Received(200, "hello"));
      EXPECT_EQ(LastRequest(other).method, "GET");
    }
  }
}

TEST_F(EarlyEndTest, RefusesCutChunksDespiteContentLength) {
  const RawServer server(
      AlwaysThenClose("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nContent-Length: 5\r\n\r\n"
                      "5\r\nhello\r\n"),
      {nullptr, false});
  EXPECT_EQ(Upload(Way::kSendAndRead, server.Url()), Failed(200, TransferError::kCutOff));
}

constexpr char kEndedByClose[] = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nhello";

// The upload does not matter, because the server has closed its direction in order.
TEST_F(EarlyEndTest, AcceptsBodyEndedByClose) {
  const RawServer server(AlwaysThenClose(kEndedByClose), {nullptr, false});
  EXPECT_EQ(Upload(Way::kSendAndRead, server.Url()), Received(200, "hello"));
}

TEST_F(EarlyEndTest, AcceptsBodyEndedByCloseWhileTheUploadStalls) {
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) {
        connection.Write(kEndedByClose);
        connection.EndWriting();
        connection.StallWithoutReading();
      },
      kUnread);
  EXPECT_EQ(Upload(Way::kSendAndRead, server.Url()), Received(200, "hello"));
}

TEST_F(EarlyEndTest, RefusesAnIncompleteResponse) {
  SetInactivityTimeout(2);
  const RawServer server(AnswerUnread("HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nhello"),
                         kUnread);
  EXPECT_EQ(Upload(Way::kSendAndRead, server.Url()), Failed(200, TransferError::kSilent));
}

}  // namespace
}  // namespace stowra_test

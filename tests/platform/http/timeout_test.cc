// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <string>
#include <thread>

#include "tests/platform/http/handlers.h"
#include "tests/platform/http/internet_data_test_peer.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

using ovrant::internet::InternetDataTestPeer;
using ovrant::internet::TransferError;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr float kShort = 0.4F;

// For servers that must send in time. A busy machine may delay a byte by this much.
constexpr float kLonger = 2;
constexpr milliseconds kPause(100);
constexpr milliseconds kEarly(10);  // the tolerance of an end

#define CHUNKED "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"

constexpr Way kBothModes[] = {Way::kDownload, Way::kDownloadWithDelegate};

class TimeoutTest : public TransportTest {
 protected:
  // Expects that the timeout ends this transfer, after a status if one is given.
  static void ExpectTimeout(Way way, const std::string& url, int status = 0) {
    const float timeout = status == 0 ? kShort : kLonger;
    SetInactivityTimeout(timeout);
    const auto begin = Clock::now();
    EXPECT_EQ(Ask(way, url, ""), NotReceived(status)) << NameOf(way);
    ExpectTook(timeout, begin);
  }

  static void ExpectTook(float timeout, Clock::time_point begin) {
    const auto took = Clock::now() - begin;
    EXPECT_GE(took, std::chrono::duration<float>(timeout) - kEarly);
    EXPECT_LT(took, kPatience);
  }
};

struct Silent {
  const char* name;
  const char* bytes;
  int status;
};

class SilenceTest : public TimeoutTest, public ::testing::WithParamInterface<Silent> {};

TEST_P(SilenceTest, EndsATransfer) {
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write(GetParam().bytes);
    connection.Stall();
  });
  for (const Way way : kBothModes) ExpectTimeout(way, server.Url(), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(
    Places, SilenceTest,
    ::testing::Values(Silent{"InsideTheStatusLine", "HTTP/1.1 20", 0},
                      Silent{"AfterAnInterimResponse", "HTTP/1.1 100 Continue\r\n\r\n", 100},
                      Silent{"BeforeTheBody", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n", 200},
                      Silent{"InsideAChunk", CHUNKED "5\r\nhe", 200},
                      Silent{"BeforeTheEndOfTheConnection", "HTTP/1.1 200 OK\r\n\r\nhello", 200}),
    RowName());

RawServer::Handler Dripping(const char* start, const std::string& bytes, milliseconds pause) {
  return [=](const RawRequest&, RawConnection& connection) {
    connection.Write(start);
    connection.Drip(bytes, pause);
  };
}

// The server sends `bytes` one by one, with a pause before each.
struct Drip {
  const char* name;
  const char* start;
  std::string bytes;
  milliseconds pause;
  const char* body;
};

class DripTest : public TimeoutTest, public ::testing::WithParamInterface<Drip> {};

TEST_P(DripTest, WholeLinesAreProgress) {
  const auto& [name, start, bytes, pause, body] = GetParam();
  const RawServer server(Dripping(start, bytes, pause));
  SetInactivityTimeout(kLonger);
  for (const Way way : kBothModes) {
    EXPECT_EQ(Ask(way, server.Url(), ""), Received(200, body)) << NameOf(way);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Places, DripTest,
    ::testing::Values(Drip{"OfHeaderLines", "HTTP/1.1 200 OK\r\n",
                           Repeated("X-A: 1\r\n", 20) + "Content-Length: 5\r\n\r\nhello",
                           kPause / 8, "hello"},
                      Drip{"OfChunksAndTrailerLines", CHUNKED,
                           Repeated("1\r\nx\r\n", 10) + "0\r\n" + Repeated("A: 1\r\n", 10) + "\r\n",
                           kPause / 4, "xxxxxxxxxx"}),
    RowName());

TEST_F(TimeoutTest, RedirectsAreProgress) {
  SetInactivityTimeout(kLonger);
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    const std::string step = request.target.substr(1);
    // Together the steps take longer than the timeout.
    std::this_thread::sleep_for(milliseconds(600));
    connection.Write(step == "xxx" ? Response(200, "hello") : Redirect(302, "/" + step + "x"));
  });
  EXPECT_EQ(Fetch(server.Url("/")), Received(200, "hello"));
}

TEST_F(TimeoutTest, EndsAStalledTlsHandshake) {
  const RawServer server(Silence());
  ExpectTimeout(Way::kDownload, "https" + server.Url().substr(4));
}

TEST_F(TimeoutTest, OtherTransfersAreNotProgress) {
  const RawServer silent(Silence());
  const RawServer busy(
      Dripping("HTTP/1.1 200 OK\r\n\r\n", std::string(1'000'000, 'x'), milliseconds(10)));
  Background other(busy.Url());
  ASSERT_TRUE(other.Start());
  Background background(silent.Url());
  InternetDataTestPeer::SetInactivityTimeout(*background.transport, kShort);
  EXPECT_EQ(background.Run(), kFailed);
  EXPECT_EQ(background.recorder.entries().size(), 1U);
}

// The system takes a small body at once and sends it bit by bit. Of a large one it takes more as it
// sends.
TEST_F(TimeoutTest, SlowUploadIsProgress) {
  static constexpr std::chrono::duration<double> kWhole(2.5);
  SetInactivityTimeout(kLonger);
  for (const std::size_t size : {1U << 18, 6U << 20}) {
    const RawServer server(
        [size](const RawRequest&, RawConnection& connection) {
          const auto start = Clock::now();
          std::string body;
          while (body.size() < size && connection.Read(body)) {
            std::this_thread::sleep_until(start + kWhole * body.size() / size);
          }
          connection.Write(Response(200, std::to_string(body.size())));
        },
        kUnread);
    const auto begin = Clock::now();
    EXPECT_EQ(Ask(Way::kSendAndRead, server.Url(), std::string(size, 'x')),
              Received(200, std::to_string(size)));
    EXPECT_GT(Clock::now() - begin, std::chrono::duration<float>(kLonger)) << size;
  }
}

TEST_F(TimeoutTest, InvalidSettingMeansTheTransportsOwn) {
  const RawServer good(Always(Response(200, "hello")));
  const RawServer silent(Silence());
  for (const float seconds : {-1.0F, 0.0F, std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::infinity()}) {
    SetInactivityTimeout(seconds);
    EXPECT_TRUE(Fetch(good.Url()).received) << seconds;
    InternetData transport(Text(silent.Url()));
    InternetDataTestPeer::SetInactivityTimeout(transport, kShort);
    const auto begin = Clock::now();
    EXPECT_FALSE(transport.Download()) << seconds;
    EXPECT_EQ(InternetData::LastError(), TransferError::kSilent) << seconds;
    ExpectTook(kShort, begin);
  }
  SetInactivityTimeout(std::numeric_limits<float>::max());
  EXPECT_TRUE(Fetch(good.Url()).received);
}

// The worker has no time to wait beside a reply that comes as fast as it can be read.
TEST_F(TimeoutTest, ASilentServerIsNoticedBesideABusyOne) {
  const RawServer busy(Endless(CHUNKED, Repeated("1\r\nx\r\n", 10'000)));
  const RawServer silent(Silence());
  Background stream(busy.Url());
  ASSERT_TRUE(stream.Start());
  Background background(silent.Url());
  InternetDataTestPeer::SetInactivityTimeout(*background.transport, kShort);
  const auto begin = Clock::now();
  EXPECT_EQ(background.Run(), kFailed);
  ExpectTook(kShort, begin);
  EXPECT_EQ(stream.recorder.names().size(), 1U) << "the stream has ended";  // it hears of both
}

}  // namespace
}  // namespace stowra_test

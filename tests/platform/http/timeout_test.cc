// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/http/internet_data_test_peer.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/full_listener.h"
#include "tests/support/raw_server.h"
#include "tests/support/text.h"

namespace stowra_test {
namespace {

using ovrant::internet::InternetDataTestPeer;
using ovrant::internet::TransferError;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr float kShort = 0.4F;
constexpr milliseconds kShortest(390);

// For transfers that must not time out. A busy machine may delay a byte by this much.
constexpr float kLonger = 0.6F;
constexpr milliseconds kPause(50);

struct Silent {
  const char* name;
  const char* bytes;
  int status;
};

void PrintTo(const Silent& silent, std::ostream* out) { *out << silent.name; }

class SilenceTest : public TransportTest, public ::testing::WithParamInterface<Silent> {
 protected:
  // Sends some bytes and then nothing.
  const RawServer server_{[](const RawRequest&, RawConnection& connection) {
    connection.Write(GetParam().bytes);
    connection.Stall();
  }};
};

TEST_P(SilenceTest, EndsASynchronousTransfer) {
  SetInactivityTimeout(kShort);
  InternetData transport(Text(server_.Url()));
  const auto begin = Clock::now();
  EXPECT_FALSE(transport.Download());
  EXPECT_GE(Clock::now() - begin, kShortest);
  EXPECT_LT(Clock::now() - begin, kSoon);
  ExpectFailureState(transport, GetParam().status);
}

TEST_P(SilenceTest, EndsABackgroundTransfer) {
  SetInactivityTimeout(kShort);
  Background background(server_.Url());
  const auto begin = Clock::now();
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kFailed);
  EXPECT_GE(Clock::now() - begin, kShortest);
  EXPECT_LT(Clock::now() - begin, kSoon);
  ExpectFailureState(*background.transport, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(
    Places, SilenceTest,
    ::testing::Values(
        Silent{"AtOnce", "", 0}, Silent{"InsideTheStatusLine", "HTTP/1.1 20", 0},
        Silent{"InsideAHeader", "HTTP/1.1 200 OK\r\nContent-Le", 200},
        Silent{"AfterAnInterimResponse", "HTTP/1.1 100 Continue\r\n\r\n", 100},
        Silent{"BeforeTheBody", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n", 200},
        Silent{"InsideTheBody", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhe", 200},
        Silent{"InsideAChunk", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhe", 200},
        Silent{"BeforeTheEndOfTheConnection", "HTTP/1.1 200 OK\r\n\r\nhello", 200}),
    [](const auto& test) { return test.param.name; });

class TimeoutTest : public TransportTest {};

// Only complete lines are progress, so a drip cannot go on for ever.
TEST_F(TimeoutTest, EndsADripInsideAHeaderLine) {
  SetInactivityTimeout(kShort);
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\nX-Slow: ");
    connection.Drip(std::string(1000, 'x'), kPause);
  });
  InternetData transport(Text(server.Url()));
  EXPECT_FALSE(transport.Download());
  ExpectFailureState(transport, 200);
}

TEST_F(TimeoutTest, HeaderLinesAreProgress) {
  SetInactivityTimeout(kLonger);
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\n");
    for (int i = 0; i < 20; ++i) connection.Drip("X-A: 1\r\n", kPause / 8);
    connection.Write("Content-Length: 5\r\n\r\nhello");
  });
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(BodyOf(transport), "hello");
}

TEST_F(TimeoutTest, RedirectsAreProgress) {
  SetInactivityTimeout(kLonger);
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    const std::string step = request.target.substr(1);
    // The status line comes late, after most of the timeout.
    std::this_thread::sleep_for(milliseconds(400));
    connection.Write(step == "xxx" ? Response(200, "hello")
                                   : Response(302, "", "Location: /" + step + "x\r\n"));
  });
  InternetData transport(Text(server.Url("/")));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(BodyOf(transport), "hello");
}

TEST_F(TimeoutTest, BytesInTheBodyAreProgress) {
  SetInactivityTimeout(kLonger);
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 20\r\n\r\n");
    connection.Drip(std::string(20, 'x'), kPause);
  });
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(BodyOf(*background.transport), std::string(20, 'x'));
}

TEST_F(TimeoutTest, EndsADripInsideAChunkSize) {
  SetInactivityTimeout(kShort);
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
    connection.Drip("5;" + std::string(1000, 'x'), kPause);
  });
  InternetData transport(Text(server.Url()));
  EXPECT_FALSE(transport.Download());
  ExpectFailureState(transport, 200);
}

TEST_F(TimeoutTest, ChunksAndTrailerLinesAreProgress) {
  SetInactivityTimeout(kLonger);
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
    for (int i = 0; i < 10; ++i) connection.Drip("1\r\nx\r\n", kPause / 4);
    connection.Write("0\r\n");
    for (int i = 0; i < 10; ++i) connection.Drip("A: 1\r\n", kPause / 4);
    connection.Write("\r\n");
  });
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(BodyOf(transport), std::string(10, 'x'));
}

TEST_F(TimeoutTest, EndsAConnectionThatIsNotMade) {
  SetInactivityTimeout(kShort);
  const FullListener listener;
  InternetData transport(Text(listener.Url()));
  const auto begin = Clock::now();
  EXPECT_FALSE(transport.Download());
  EXPECT_GE(Clock::now() - begin, kShortest);
  EXPECT_LT(Clock::now() - begin, kSoon);
  ExpectFailureState(transport);
  Background background(listener.Url());
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kFailed);
}

TEST_F(TimeoutTest, EndsAStalledTlsHandshake) {
  SetInactivityTimeout(kShort);
  const RawServer server(Silence());
  InternetData transport(Text("https" + server.Url().substr(4)));
  const auto begin = Clock::now();
  EXPECT_FALSE(transport.Download());
  EXPECT_GE(Clock::now() - begin, kShortest);
  EXPECT_LT(Clock::now() - begin, kSoon);
  ExpectFailureState(transport);
}

TEST_F(TimeoutTest, OtherTransfersAreNotProgress) {
  SetInactivityTimeout(kShort);
  const RawServer silent(Silence());
  const RawServer busy([](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\n\r\n");
    connection.Drip(std::string(1'000'000, 'x'), milliseconds(10));
  });
  Background other(busy.Url());
  ASSERT_TRUE(other.Start());
  Background background(silent.Url());
  ASSERT_TRUE(background.transport->DownloadWithDelegate(background.delegate.get(), nullptr));
  EXPECT_TRUE(background.recorder.WaitFor(1));
  EXPECT_EQ(background.recorder.names(), std::vector<std::string>{kFailed});
}

TEST_F(TimeoutTest, SlowUploadIsProgress) {
  SetInactivityTimeout(kLonger);
  constexpr std::size_t kMebibyte = 1 << 20;
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) {
        std::string body;
        std::size_t next_pause = kMebibyte;
        while (body.size() < kLargeBody && connection.Read(body)) {
          if (body.size() < next_pause) continue;
          next_pause += kMebibyte;
          Event never;
          never.Wait(milliseconds(30));
        }
        connection.Write(Response(200, std::to_string(body.size())));
      },
      {nullptr, false, 0});
  InternetData transport(Text("none:"));
  SetSendData(std::string(kLargeBody, 'x'), transport);
  const auto begin = Clock::now();
  EXPECT_TRUE(Post(server.Url(), transport));
  EXPECT_EQ(BodyOf(transport), std::to_string(kLargeBody));
  EXPECT_GT(Clock::now() - begin, std::chrono::duration<float>(kLonger));
}

TEST_F(TimeoutTest, BytesThatTheSystemSendsOfAnUploadAreProgress) {
  SetInactivityTimeout(kLonger);
  // The system takes the whole body at once and sends it bit by bit.
  constexpr std::size_t kBody = 1 << 18;
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) {
        std::string body;
        Event never;
        while (body.size() < kBody && connection.Read(body)) never.Wait(milliseconds(15));
        connection.Write(Response(200, std::to_string(body.size())));
      },
      {nullptr, false, 4096});
  InternetData transport(Text("none:"));
  SetSendData(std::string(kBody, 'x'), transport);
  EXPECT_TRUE(Post(server.Url(), transport));
  EXPECT_EQ(BodyOf(transport), std::to_string(kBody));
}

TEST_F(TimeoutTest, EndsAnUploadThatTheServerDoesNotRead) {
  SetInactivityTimeout(kShort);
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) { connection.StallWithoutReading(); },
      {nullptr, false, 4096});
  Background background(server.Url());
  SetSendData(std::string(kLargeBody, 'x'), *background.transport);
  ASSERT_TRUE(background.transport->UploadWithDelegate(background.delegate.get(), nullptr));
  EXPECT_EQ(background.WaitForEnd(), kFailed);
  ExpectFailureState(*background.transport);
}

TEST_F(TimeoutTest, ReusedConnectionGetsTheWholeTimeout) {
  SetInactivityTimeout(kShort);
  int count = 0;
  const RawServer server([&count](const RawRequest&, RawConnection& connection) {
    if (++count == 1) {
      connection.Write(Response(200, "first"));
    } else {
      connection.Stall();
    }
  });
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
  const auto begin = Clock::now();
  EXPECT_FALSE(transport.Download());
  EXPECT_GE(Clock::now() - begin, kShortest);
  EXPECT_LT(Clock::now() - begin, kSoon);
}

TEST_F(TimeoutTest, InvalidSettingMeansTheDefault) {
  for (const float seconds : {-1.0F, 0.0F, std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::infinity()}) {
    SetInactivityTimeout(seconds);
    const RawServer server(Always(Response(200, "hello")));
    InternetData transport(Text(server.Url()));
    EXPECT_TRUE(transport.Download()) << seconds;
  }
  SetInactivityTimeout(std::numeric_limits<float>::max());
  const RawServer server(Always(Response(200, "hello")));
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
}

TEST_F(TimeoutTest, InvalidSettingMeansTheTransportsOwn) {
  const RawServer server(Silence());
  for (const float seconds : {-1.0F, 0.0F, std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::infinity()}) {
    SetInactivityTimeout(seconds);
    InternetData transport(Text(server.Url()));
    InternetDataTestPeer::SetInactivityTimeout(transport, kShort);
    const auto begin = Clock::now();
    EXPECT_FALSE(transport.Download()) << seconds;
    EXPECT_EQ(InternetData::LastError(), TransferError::kSilent) << seconds;
    EXPECT_GE(Clock::now() - begin, kShortest) << seconds;
    EXPECT_LT(Clock::now() - begin, kSoon) << seconds;
  }
}

// The worker has no time to wait beside a reply that comes as fast as it can be read.
TEST_F(TimeoutTest, ASilentServerIsNoticedBesideABusyOne) {
  const RawServer busy([](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
    const std::string many_chunks = Repeated("1\r\nx\r\n", 10'000);
    while (connection.Write(many_chunks)) continue;
  });
  const RawServer silent([](const RawRequest&, RawConnection& connection) { connection.Stall(); });
  SetInactivityTimeout(kShort);
  Background stream(busy.Url());
  ASSERT_TRUE(stream.Start());
  Background background(silent.Url());
  const auto begin = Clock::now();
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kFailed);
  EXPECT_GE(Clock::now() - begin, kShortest);
  EXPECT_EQ(stream.recorder.names().size(), 1U) << "the stream has ended";  // it hears of both
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
// Why a transfer fails, as InternetData::LastError and the listener tell it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/closed_port.h"
#include "tests/support/comma_locale.h"
#include "tests/support/full_listener.h"

namespace stowra_test {
namespace {

class TransferErrorTest : public TransportTest {
 protected:
  static void ExpectInEveryWay(TransferError reason, const std::string& url) {
    for (const Way way : kAllWays) {
      EXPECT_EQ(ReasonOf(way, url), reason) << url << ", " << NameOf(way);
    }
  }
};

TEST_F(TransferErrorTest, UrlMayBeBad) {
  for (const char* url : {"http://", "ftp://127.0.0.1/", "http://127.0.0.1:99999/"}) {
    ExpectInEveryWay(TransferError::kBadUrl, url);
  }
}

TEST_F(TransferErrorTest, NameMayNotBeFound) {
  ExpectInEveryWay(TransferError::kNameNotFound, "http://x.invalid/");
}

TEST_F(TransferErrorTest, NobodyMayListen) {
  ExpectInEveryWay(TransferError::kNotConnected, ClosedPort().Url());
}

TEST_F(TransferErrorTest, BodyMayBeTooLarge) {
  SetBodyCap(1'000'000);
  const RawServer server(AlwaysThenClose(Response(200, std::string(1'000'001, 'x'))));
  ExpectInEveryWay(TransferError::kTooLarge, server.Url());
}

TEST_F(TransferErrorTest, ServerMayBeSilent) {
  SetInactivityTimeout(0.5F);
  const RawServer server(Silence());
  ExpectInEveryWay(TransferError::kSilent, server.Url());
  ExpectInEveryWay(TransferError::kSilent, "https" + server.Url().substr(4));
  ExpectInEveryWay(TransferError::kSilent, FullListener().Url());
}

class LastErrorTest : public TransportTest {};

TEST_F(LastErrorTest, IsNoneAfterAnyReply) {
  const RawServer server(Always(Response(500, "sorry")));
  InternetData bad(Text("none:"));
  InternetData good(Text(server.Url()));
  EXPECT_FALSE(bad.Download());
  EXPECT_EQ(InternetData::LastError(), TransferError::kBadUrl);
  EXPECT_TRUE(good.Download());
  EXPECT_EQ(InternetData::LastError(), TransferError::kNone);
  EXPECT_FALSE(Post("none:", good));
  EXPECT_EQ(InternetData::LastError(), TransferError::kBadUrl);
  EXPECT_TRUE(Post(server.Url(), bad));
  EXPECT_EQ(InternetData::LastError(), TransferError::kNone);
}

TEST_F(LastErrorTest, BelongsToTheThread) {
  InternetData transport(Text("none:"));
  EXPECT_FALSE(transport.Download());
  std::thread other([] {
    EXPECT_EQ(InternetData::LastError(), TransferError::kNone);
    SetInactivityTimeout(0.1F);
    const RawServer silent(Silence());
    InternetData own(Text(silent.Url()));
    EXPECT_FALSE(own.Download());
    EXPECT_EQ(InternetData::LastError(), TransferError::kSilent);
  });
  other.join();
  EXPECT_EQ(InternetData::LastError(), TransferError::kBadUrl);
}

TEST_F(LastErrorTest, BackgroundTransfersDoNotChangeIt) {
  InternetData transport(Text("none:"));
  EXPECT_FALSE(transport.Download());
  const RawServer server(Always(Response(200, "hello")));
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(InternetData::LastError(), TransferError::kBadUrl);
}

TEST_F(LastErrorTest, SwitchedProtocolFailsAtOnce) {
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write(
        "HTTP/1.1 101 Switching Protocols\r\nUpgrade: x\r\nConnection: upgrade\r\n\r\n");
    connection.Stall();
  });
  const auto begin = std::chrono::steady_clock::now();
  for (const Way way : kAllWays) EXPECT_EQ(ReasonOf(way, server.Url()), TransferError::kMalformed);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, kPatience);
}

TEST_F(TransferErrorTest, TextOfATimeoutHasADecimalPointInAnyLocale) {
  const RawServer server(Silence());
  SetInactivityTimeout(0.25F);
  const auto text = [&server] {
    const EndListener listener;
    Fetch(server.Url());
    return listener.last().error.utf8();
  };
  const std::string before = text();
  EXPECT_THAT(before, testing::HasSubstr("no data for 0.25 seconds"));
  const CommaLocale locale;
  EXPECT_EQ(text(), before);
  EXPECT_TRUE(CommaLocale::IsInForce());
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
// Proxies that do not open the tunnel for https.

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/handlers.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

constexpr char kTarget[] = "https://server.example/";

void UseProxy(const RawServer& proxy, float timeout = 0) {
  TransferDefaults defaults;
  defaults.proxy = Text(proxy.Url(""));
  defaults.inactivity_timeout = timeout;
  InternetData::SetDefaults(defaults);
}

// What the proxy sends: `start` once, then `piece` for ever.
struct Flood {
  const char* name;
  const char* start;
  std::string piece;
};

class EndlessProxyTest : public TransportTest, public ::testing::WithParamInterface<Flood> {
 protected:
  const RawServer proxy_{Endless(GetParam().start, GetParam().piece)};
};

INSTANTIATE_TEST_SUITE_P(
    Answers, EndlessProxyTest,
    ::testing::Values(
        Flood{"BodyOfARefusal", "HTTP/1.1 407 No\r\nContent-Length: 9000000000000000\r\n\r\n",
              std::string(10'000, 'x')},
        Flood{"ChunkedBodyOfARefusal", "HTTP/1.1 403 No\r\nTransfer-Encoding: chunked\r\n\r\n",
              "5\r\nhello\r\n"},
        Flood{"Headers", "HTTP/1.1 200 OK\r\n", "X-Header: " + std::string(1000, 'x') + "\r\n"},
        Flood{"HeaderLine", "HTTP/1.1 200 OK\r\nX-Header: ", std::string(10'000, 'x')},
        Flood{"InterimResponses", "", "HTTP/1.1 100 Continue\r\n\r\n"}),
    RowName());

TEST_P(EndlessProxyTest, FailsSoonInEveryWay) {
  UseProxy(proxy_);
  for (const Way way : kAllWays) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_NE(ReasonOf(way, kTarget), TransferError::kNone) << NameOf(way);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, kPatience) << NameOf(way);
  }
}

// Refuses each CONNECT, with a body of so many bytes. With 407 libcurl reads it.
TransferError ReasonOfRefusal(Way way, std::size_t size) {
  const RawServer proxy(
      AlwaysThenClose("HTTP/1.1 407 No\r\nContent-Length: " + std::to_string(size) + "\r\n\r\n" +
                      std::string(size, 'x')));
  UseProxy(proxy);
  return ReasonOf(way, kTarget);
}

TEST_F(TransportTest, AProxyMayRefuseIn60KibibytesButNotInAMebibyte) {
  for (const Way way : kAllWays) {
    EXPECT_EQ(ReasonOfRefusal(way, 60 << 10), TransferError::kNotConnected) << NameOf(way);
    EXPECT_EQ(ReasonOfRefusal(way, 1 << 20), TransferError::kTooLarge) << NameOf(way);
  }
}

TEST_P(EndlessProxyTest, DoesNotStallOtherTransfers) {
  constexpr std::size_t kEach = 10;
  const RawServer server(Always(Response(200, "hello")));
  Background tunnels(kTarget);
  Background others(server.Url());
  std::vector<std::unique_ptr<InternetData>> transports;
  for (std::size_t i = 0; i < kEach; ++i) {
    UseProxy(proxy_);
    transports.push_back(std::make_unique<InternetData>(Text(kTarget)));
    ASSERT_TRUE(transports.back()->DownloadWithDelegate(tunnels.delegate.get(), nullptr));
    InternetData::SetDefaults(TransferDefaults());
    transports.push_back(std::make_unique<InternetData>(Text(server.Url())));
    ASSERT_TRUE(transports.back()->DownloadWithDelegate(others.delegate.get(), nullptr));
  }
  EXPECT_TRUE(tunnels.recorder.WaitFor(2 * kEach));
  for (std::size_t i = 0; i < transports.size(); ++i) {
    EXPECT_EQ(transports[i]->status_code(), i % 2 == 0 ? 0 : 200);
  }
}

// The proxy is silent, and the host's timeout ends the transfer.
TEST_F(TransportTest, SilentProxyIsSilence) {
  const RawServer proxy(Silence());
  UseProxy(proxy, 0.3F);
  for (const Way way : kAllWays) EXPECT_EQ(ReasonOf(way, kTarget), TransferError::kSilent);
}

}  // namespace
}  // namespace stowra_test

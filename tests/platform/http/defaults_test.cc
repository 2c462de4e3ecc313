// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>
#include <thread>
#include <vector>

#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

class DefaultsTest : public TransportTest {
 protected:
  RawRequest Get(InternetData& transport) {
    EXPECT_TRUE(transport.Download());
    return LastRequest(server_);
  }

  const RawServer server_{Always(Response(200, "direct"))};
  InternetData transport_{Text(server_.Url())};
  TransferDefaults defaults_;
};

TEST_F(DefaultsTest, AreEmptyAtFirst) {
  EXPECT_EQ(defaults_.inactivity_timeout, 0);
  EXPECT_EQ(defaults_.body_cap, 0U);
  EXPECT_TRUE(defaults_.ca_file.empty());
  EXPECT_TRUE(defaults_.proxy.empty());
  EXPECT_TRUE(defaults_.user_agent.empty());
  EXPECT_TRUE(defaults_.extra_request_headers.empty());
}

TEST_F(DefaultsTest, UserAgentIsSent) {
  defaults_.user_agent = "Modeller/1.0";
  InternetData::SetDefaults(defaults_);
  EXPECT_EQ(Get(transport_).Header("User-Agent"), "Modeller/1.0");
}

TEST_F(DefaultsTest, RequestUserAgentWins) {
  defaults_.user_agent = "Modeller/1.0";
  InternetData::SetDefaults(defaults_);
  transport_.SetValueForHTTPSendHeaders("user-agent", "Own/2.0");
  EXPECT_EQ(Get(transport_).Header("User-Agent"), "Own/2.0");
}

TEST_F(DefaultsTest, LineEndsInTheUserAgentFailTheTransfer) {
  defaults_.user_agent = "Modeller\r\nX-Injected: 1";
  InternetData::SetDefaults(defaults_);
  EXPECT_FALSE(transport_.Download());
  EXPECT_EQ(server_.connections(), 0);
}

TEST_F(DefaultsTest, SendsExtraHeadersBesideRequestHeaders) {
  defaults_.extra_request_headers["X-Extra"] = "extra";
  defaults_.extra_request_headers["X-Both"] = "extra";
  InternetData::SetDefaults(defaults_);
  transport_.SetValueForHTTPSendHeaders("x-both", "own");
  const RawRequest request = Get(transport_);
  EXPECT_EQ(request.Header("X-Extra"), "extra");
  EXPECT_EQ(request.Header("X-Both"), "own");
}

TEST_F(DefaultsTest, SendAndReadHeadersWinOverExtraOnes) {
  defaults_.extra_request_headers["X-Both"] = "extra";
  InternetData::SetDefaults(defaults_);
  StringMap headers;
  headers["X-BOTH"] = "passed";
  EXPECT_TRUE(Post(server_.Url(), transport_, &headers));
  EXPECT_EQ(server_.requests().at(0).Header("X-Both"), "passed");
}

TEST_F(DefaultsTest, ExtraHeaderNamesIgnoreCase) {
  defaults_.extra_request_headers["X-Extra"] = "1";
  defaults_.extra_request_headers["x-extra"] = "2";
  InternetData::SetDefaults(defaults_);
  const std::string sent = Get(transport_).Header("X-Extra");
  EXPECT_TRUE(sent == "1" || sent == "2") << sent;
}

TEST_F(DefaultsTest, InvalidExtraHeaderFailsTheTransfer) {
  defaults_.extra_request_headers["X-Extra"] = "a\r\nX-Injected: 1";
  InternetData::SetDefaults(defaults_);
  EXPECT_FALSE(transport_.Download());
  EXPECT_EQ(server_.connections(), 0);
}

TEST_F(DefaultsTest, AreReadWhenATransferStarts) {
  defaults_.extra_request_headers["X-Extra"] = "first";
  InternetData::SetDefaults(defaults_);
  InternetData transport(Text(server_.Url()));
  defaults_.extra_request_headers["X-Extra"] = "second";
  InternetData::SetDefaults(defaults_);
  EXPECT_EQ(Get(transport).Header("X-Extra"), "second");
  InternetData::SetDefaults(TransferDefaults());
  EXPECT_FALSE(Get(transport).HasHeader("X-Extra"));
}

TEST_F(DefaultsTest, AreCopied) {
  {
    TransferDefaults defaults;
    defaults.user_agent = "Modeller/1.0";
    InternetData::SetDefaults(defaults);
    defaults.user_agent = "Other/1.0";
  }
  EXPECT_EQ(Get(transport_).Header("User-Agent"), "Modeller/1.0");
}

TEST_F(DefaultsTest, SendsRequestsToTheProxy) {
  const RawServer proxy(Always(Response(200, "through the proxy")));
  defaults_.proxy = proxy.Url("").c_str();
  InternetData::SetDefaults(defaults_);
  EXPECT_TRUE(transport_.Download());
  EXPECT_EQ(BodyOf(transport_), "through the proxy");
  EXPECT_EQ(proxy.requests().at(0).target, server_.Url());
  EXPECT_EQ(server_.connections(), 0);
}

TEST_F(DefaultsTest, ProxyOpensATunnelForHttps) {
  const RawServer proxy(AlwaysThenClose(Response(403, "no tunnel", "X-Proxy: 1\r\n")));
  defaults_.proxy = proxy.Url("").c_str();
  InternetData::SetDefaults(defaults_);
  InternetData transport(Text("https://server.example/"));
  EXPECT_FALSE(transport.Download());
  ExpectFailureState(transport);
  EXPECT_EQ(proxy.requests().at(0).method, "CONNECT");
  EXPECT_EQ(proxy.requests().at(0).target, "server.example:443");
}

TEST_F(DefaultsTest, HidesRequestHeadersFromTheProxyOfATunnel) {
  const RawServer proxy(AlwaysThenClose(Response(403, "no tunnel")));
  defaults_.proxy = proxy.Url("").c_str();
  InternetData::SetDefaults(defaults_);
  InternetData transport(Text("https://server.example/"));
  transport.SetValueForHTTPSendHeaders("Authorization", "Bearer secret");
  EXPECT_FALSE(transport.Download());
  EXPECT_FALSE(proxy.requests().at(0).HasHeader("Authorization"));
}

TEST_F(DefaultsTest, UsesTheProxyOfTheEnvironmentByDefault) {
  const RawServer proxy(Always(Response(200, "through the proxy")));
  ASSERT_EQ(setenv("http_proxy", proxy.Url("").c_str(), 1), 0);
  EXPECT_TRUE(transport_.Download());
  ASSERT_EQ(unsetenv("http_proxy"), 0);
  EXPECT_EQ(BodyOf(transport_), "through the proxy");
  EXPECT_TRUE(transport_.Download());
  EXPECT_EQ(BodyOf(transport_), "direct");
}

TEST_F(DefaultsTest, MayBeSetWhileTransfersRun) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([this] {
      for (int k = 0; k < 20; ++k) {
        InternetData transport(Text(server_.Url()));
        EXPECT_TRUE(transport.Download());
      }
    });
  }
  for (int k = 0; k < 200; ++k) {
    TransferDefaults defaults;
    defaults.extra_request_headers[Text("X-" + std::to_string(k))] = "1";
    InternetData::SetDefaults(defaults);
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace stowra_test

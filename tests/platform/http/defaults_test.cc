// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>
#include <thread>
#include <vector>

#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

class DefaultsTest : public TransportTest {
 protected:
  static TransferDefaults WithUserAgent(const char* text) {
    TransferDefaults defaults;
    defaults.user_agent = text;
    return defaults;
  }
  static TransferDefaults WithHeaders(const StringMap& headers) {
    TransferDefaults defaults;
    defaults.extra_request_headers = headers;
    return defaults;
  }
  static TransferDefaults WithProxy(const RawServer& proxy) {
    TransferDefaults defaults;
    defaults.proxy = proxy.Url("").c_str();
    return defaults;
  }

  RawRequest Get(InternetData& transport) {
    EXPECT_TRUE(transport.Download());
    return LastRequest(server_);
  }

  const RawServer server_{Always(Response(200, "direct"))};
  const RawServer proxy_{Always(Response(200, "through the proxy"))};
  InternetData transport_{Text(server_.Url())};
};

TEST_F(DefaultsTest, AreEmptyAtFirst) {
  const TransferDefaults defaults;
  EXPECT_EQ(defaults.inactivity_timeout, 0);
  EXPECT_EQ(defaults.body_cap, 0U);
  EXPECT_TRUE(defaults.ca_file.empty());
  EXPECT_TRUE(defaults.proxy.empty());
  EXPECT_TRUE(defaults.user_agent.empty());
  EXPECT_TRUE(defaults.extra_request_headers.empty());
}

TEST_F(DefaultsTest, UserAgentIsSentUnlessTheRequestHasItsOwn) {
  InternetData::SetDefaults(WithUserAgent("Modeller/1.0"));
  EXPECT_EQ(Get(transport_).Header("User-Agent"), "Modeller/1.0");
  transport_.SetValueForHTTPSendHeaders("user-agent", "Own/2.0");
  EXPECT_EQ(Get(transport_).Header("User-Agent"), "Own/2.0");
}

TEST_F(DefaultsTest, LineEndsFailTheTransfer) {
  for (const TransferDefaults& defaults : {WithUserAgent("Modeller\r\nX-Injected: 1"),
                                           WithHeaders({{"X-Extra", "a\r\nX-Injected: 1"}})}) {
    InternetData::SetDefaults(defaults);
    EXPECT_FALSE(transport_.Download()) << defaults.user_agent.utf8();
  }
  EXPECT_EQ(server_.connections(), 0);
}

TEST_F(DefaultsTest, SendsExtraHeadersBesideRequestHeaders) {
  InternetData::SetDefaults(WithHeaders({{"X-Extra", "extra"}, {"X-Both", "extra"}}));
  transport_.SetValueForHTTPSendHeaders("x-both", "own");
  const RawRequest request = Get(transport_);
  EXPECT_EQ(request.Header("X-Extra"), "extra");
  EXPECT_EQ(request.Header("X-Both"), "own");
}

TEST_F(DefaultsTest, SendAndReadHeadersWinOverExtraOnes) {
  InternetData::SetDefaults(WithHeaders({{"X-Both", "extra"}}));
  StringMap headers = {{"X-BOTH", "passed"}};
  EXPECT_TRUE(Post(server_.Url(), transport_, &headers));
  EXPECT_EQ(LastRequest(server_).Header("X-Both"), "passed");
}

TEST_F(DefaultsTest, ExtraHeaderNamesIgnoreCase) {
  InternetData::SetDefaults(WithHeaders({{"X-Extra", "1"}, {"x-extra", "2"}}));
  const std::string sent = Get(transport_).Header("X-Extra");
  EXPECT_TRUE(sent == "1" || sent == "2") << sent;
}

TEST_F(DefaultsTest, AreReadWhenATransferStarts) {
  InternetData::SetDefaults(WithHeaders({{"X-Extra", "first"}}));
  InternetData transport(Text(server_.Url()));
  InternetData::SetDefaults(WithHeaders({{"X-Extra", "second"}}));
  EXPECT_EQ(Get(transport).Header("X-Extra"), "second");
  InternetData::SetDefaults(TransferDefaults());
  EXPECT_FALSE(Get(transport).HasHeader("X-Extra"));
}

TEST_F(DefaultsTest, AreCopied) {
  TransferDefaults defaults = WithUserAgent("Modeller/1.0");
  InternetData::SetDefaults(defaults);
  defaults.user_agent = "Other/1.0";
  EXPECT_EQ(Get(transport_).Header("User-Agent"), "Modeller/1.0");
}

TEST_F(DefaultsTest, SendsAllRequestsToTheProxy) {
  InternetData::SetDefaults(WithProxy(proxy_));
  for (const char* exceptions : {"", "*"}) {
    ASSERT_EQ(setenv("no_proxy", exceptions, 1), 0);
    EXPECT_TRUE(transport_.Download());
    ASSERT_EQ(unsetenv("no_proxy"), 0);
    EXPECT_EQ(BodyOf(transport_), "through the proxy") << exceptions;
    EXPECT_EQ(LastRequest(proxy_).target, server_.Url());
  }
  EXPECT_EQ(server_.connections(), 0);
}

TEST_F(DefaultsTest, ProxyOpensATunnelForHttpsAndSeesNoHeaders) {
  const RawServer proxy(AlwaysThenClose(Response(403, "no tunnel", "X-Proxy: 1\r\n")));
  InternetData::SetDefaults(WithProxy(proxy));
  InternetData transport(Text("https://server.example/"));
  transport.SetValueForHTTPSendHeaders("Authorization", "Bearer secret");
  EXPECT_FALSE(transport.Download());
  ExpectFailureState(transport);
  EXPECT_EQ(LastRequest(proxy).method, "CONNECT");
  EXPECT_EQ(LastRequest(proxy).target, "server.example:443");
  EXPECT_FALSE(LastRequest(proxy).HasHeader("Authorization"));
}

TEST_F(DefaultsTest, UsesTheProxyOfTheEnvironmentByDefault) {
  ASSERT_EQ(setenv("http_proxy", proxy_.Url("").c_str(), 1), 0);
  EXPECT_TRUE(transport_.Download());
  ASSERT_EQ(unsetenv("http_proxy"), 0);
  EXPECT_EQ(BodyOf(transport_), "through the proxy");
  EXPECT_TRUE(transport_.Download());
  EXPECT_EQ(BodyOf(transport_), "direct");
}

TEST_F(DefaultsTest, MayBeSetWhileTransfersRunOnSeveralThreads) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(Response(200, request.target));
  });
  std::vector<std::thread> threads;
  for (int i = 0; i < 6; ++i) {
    threads.emplace_back([&server, i] {
      for (int k = 0; k < 20; ++k) {
        const std::string target = "/" + std::to_string(i) + "/" + std::to_string(k);
        EXPECT_EQ(Ask(Way::kDownload, server.Url(target), ""), Received(200, target));
      }
    });
  }
  for (int k = 0; k < 200; ++k) {
    InternetData::SetDefaults(WithHeaders({{Text("X-" + std::to_string(k)), "1"}}));
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace stowra_test

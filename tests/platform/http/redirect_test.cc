// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <utility>

#include "tests/platform/http/body_fixture.h"
#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/internet_data_test_peer.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

constexpr int kMostRedirects = 20;

// Redirects "/2" to "/1", that to "/0", and answers "/0".
void CountDown(const RawRequest& request, RawConnection& connection) {
  const int left = std::atoi(request.target.c_str() + 1);
  connection.Write(left > 0 ? Redirect(302, "/" + std::to_string(left - 1))
                            : Response(200, "hello"));
}

class RedirectTest : public TransportTest {};

TEST_F(RedirectTest, MethodOfAPostDependsOnTheStatus) {
  for (const int status : {301, 302, 303, 307, 308}) {
    for (const Way way : kAllWays) {
      SCOPED_TRACE(std::to_string(status) + ", " + NameOf(way));
      const RawServer server(RedirectTo("/to", status));
      EXPECT_EQ(Ask(way, server.Url("/from"), "data"), Received(200, "hello"));
      const auto requests = server.requests();
      ASSERT_EQ(requests.size(), 2U);
      EXPECT_EQ(requests[1].target, "/to");
      for (const RawRequest& request : requests) {
        const bool is_post = IsUpload(way) && (request.target == "/from" || status >= 307);
        EXPECT_EQ(request.method, is_post ? "POST" : "GET");
        EXPECT_EQ(request.body, is_post ? "data" : "");
      }
    }
  }
}

TEST_F(RedirectTest, LeavesNoHeaders) {
  const RawServer server(RedirectTo("/to"));
  InternetData transport(Text(server.Url("/from")));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(HeaderOf(transport, "Location"), "(none)");
}

// Nobody connects to the server that the redirect names.
TEST_F(RedirectTest, RefusesAnotherSchemeBeforeConnecting) {
  const RawServer other(Silence());
  const RawServer server(RedirectTo("ftp" + other.Url().substr(4)));
  for (const Way way : kAllWays) {
    EXPECT_EQ(ReasonOf(way, server.Url("/from")), TransferError::kForbiddenRedirect);
  }
  EXPECT_EQ(other.connections(), 0);
}

TEST_F(RedirectTest, FollowsTwentyAndNoMore) {
  const RawServer server(CountDown);
  const std::string allowed = server.Url("/" + std::to_string(kMostRedirects));
  const std::string refused = server.Url("/" + std::to_string(kMostRedirects + 1));
  for (const Way way : kAllWays) {
    EXPECT_EQ(Ask(way, allowed, "data"), Received(200, "hello"));
    EXPECT_EQ(LastRequest(server).target, "/0");
    EXPECT_EQ(ReasonOf(way, refused), TransferError::kTooManyRedirects);
    EXPECT_EQ(LastRequest(server).target, "/1");
  }
}

TEST_F(RedirectTest, CountsFromZeroWhenASinkAsksAgain) {
  const RawServer server(CountDown);
  TestSink sink;
  sink.choice = BodySink::Choice::kAskAgain;
  sink.on_begin = [&sink] {
    if (sink.begins == 2) sink.choice = BodySink::Choice::kTake;
  };
  InternetData transport(Text(server.Url("/" + std::to_string(kMostRedirects))));
  EXPECT_TRUE(transport.DownloadTo(sink));
  EXPECT_EQ(sink.bytes, "hello");
  EXPECT_EQ(server.requests().size(), 2 * (std::size_t{kMostRedirects} + 1));
}

TEST_F(RedirectTest, ResolvesRelativeLocations) {
  const std::pair<const char*, const char*> kCases[] = {
      {"c", "/a/c"}, {"/c", "/c"},        {"../c", "/c"}, {"../../c", "/c"}, {"?x=1", "/a/b?x=1"},
      {"./", "/a/"}, {"c d", "/a/c%20d"}, {"/c#d", "/c"}, {"/%63", "/%63"}};
  for (const auto& [location, target] : kCases) {
    const std::string redirect = Redirect(302, location);
    const RawServer server([&redirect](const RawRequest& request, RawConnection& connection) {
      connection.Write(request.target == "/a/b" ? redirect : Response(200, "hello"));
    });
    EXPECT_TRUE(Fetch(server.Url("/a/b")).received) << location;
    ASSERT_EQ(server.requests().size(), 2U) << location;
    EXPECT_EQ(server.requests()[1].target, target);
  }
}

// If it were followed, the status and the body could come from different responses.
TEST_F(RedirectTest, FailsWhenARedirectBreaksOff) {
  for (const char* rest :
       {"", "Content-Length: 9\r\n\r\nmoved", "Transfer-Encoding: chunked\r\n\r\n5\r\nmoved\r\n",
        "Transfer-Encoding: chunked\r\n\r\n5\r\nmov"}) {
    const RawServer server(
        AlwaysThenClose("HTTP/1.1 302 Found\r\nLocation: /to\r\n" + std::string(rest)));
    for (const Way way : kAllWays) {
      EXPECT_EQ(AskForReason(way, server.Url("/from"), "data"), Failed(302, TransferError::kCutOff))
          << rest;
    }
    EXPECT_EQ(LastRequest(server).target, "/from");
  }
}

TEST_F(RedirectTest, RedirectWithoutALocationIsAResponse) {
  for (const int status : {301, 302, 303, 307, 308}) {
    for (const char* location : {"", "Location:\r\n", "Location: \t\r\n"}) {
      const RawServer server(Always(Response(status, "nowhere", location)));
      for (const Way way : kAllWays) {
        EXPECT_EQ(Ask(way, server.Url(), "data"), Received(status, "nowhere")) << location;
      }
    }
  }
}

TEST_F(RedirectTest, OtherStatusWithALocationIsAResponse) {
  for (const int status : {201, 300, 304, 305, 399, 404}) {
    const std::string body = status == 304 ? "" : "here";
    const RawServer server(Always(Response(status, body, "Location: /to\r\n")));
    for (const Way way : kAllWays) {
      EXPECT_EQ(Ask(way, server.Url(), "data"), Received(status, body));
    }
    EXPECT_EQ(LastRequest(server).target, "/");
  }
}

TEST_F(RedirectTest, IsAResponseWhenRedirectsAreNotFollowed) {
  const RawServer server(RedirectTo("/to"));
  InternetData transport(Text(server.Url("/from")));
  ovrant::internet::InternetDataTestPeer::StopFollowingRedirects(transport);
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(transport.status_code(), 302);
  EXPECT_EQ(BodyOf(transport), "moved");
  EXPECT_EQ(server.requests().size(), 1U);
}

}  // namespace
}  // namespace stowra_test

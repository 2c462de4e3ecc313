// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>
#include <string>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/internet_data_test_peer.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

constexpr int kMostRedirects = 20;

std::string Redirect(int status, const std::string& location) {
  return Response(status, "moved", "Location: " + location + "\r\nX-Redirect: 1\r\n");
}

// Redirects "/from" to `location` and answers any other request with "hello".
RawServer::Handler RedirectTo(const std::string& location, int status = 302) {
  return [location, status](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.target == "/from" ? Redirect(status, location)
                                               : Response(200, "hello"));
  };
}

class RedirectTest : public TransportTest {};

TEST_F(RedirectTest, FollowsEveryRedirectOfAGet) {
  for (const int status : {301, 302, 303, 307, 308}) {
    const RawServer server(RedirectTo("/to", status));
    InternetData transport(Text(server.Url("/from")));
    EXPECT_TRUE(transport.Download()) << status;
    EXPECT_EQ(transport.status_code(), 200);
    EXPECT_EQ(BodyOf(transport), "hello");
    EXPECT_EQ(HeaderOf(transport, "X-Redirect"), "(none)");
    ASSERT_EQ(server.requests().size(), 2U);
    EXPECT_EQ(server.requests()[1].method, "GET");
    EXPECT_EQ(server.requests()[1].target, "/to");
  }
}

TEST_F(RedirectTest, FollowsARedirectInTheBackground) {
  const RawServer server(RedirectTo("/to"));
  Background background(server.Url("/from"));
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(background.transport->status_code(), 200);
  EXPECT_EQ(BodyOf(*background.transport), "hello");
}

struct PostCase {
  int status;
  const char* method;
  const char* body;
};

void PrintTo(const PostCase& item, std::ostream* out) { *out << item.status; }

class RedirectedPostTest : public TransportTest, public ::testing::WithParamInterface<PostCase> {};

TEST_P(RedirectedPostTest, MethodDependsOnTheStatus) {
  const RawServer server(RedirectTo("/to", GetParam().status));
  InternetData transport(Text("none:"));
  SetSendData("data", transport);
  EXPECT_TRUE(Post(server.Url("/from"), transport));
  Background background(server.Url("/from"));
  SetSendData("data", *background.transport);
  ASSERT_TRUE(background.transport->UploadWithDelegate(background.delegate.get(), nullptr));
  EXPECT_EQ(background.WaitForEnd(), kReturned);

  const auto requests = server.requests();
  ASSERT_EQ(requests.size(), 4U);
  for (const std::size_t first : {0U, 2U}) {
    EXPECT_EQ(requests[first].method, "POST");
    EXPECT_EQ(requests[first].body, "data");
  }
  for (const std::size_t second : {1U, 3U}) {
    EXPECT_EQ(requests[second].method, GetParam().method);
    EXPECT_EQ(requests[second].body, GetParam().body);
  }
}

INSTANTIATE_TEST_SUITE_P(Statuses, RedirectedPostTest,
                         ::testing::Values(PostCase{301, "GET", ""}, PostCase{302, "GET", ""},
                                           PostCase{303, "GET", ""}, PostCase{307, "POST", "data"},
                                           PostCase{308, "POST", "data"}),
                         [](const auto& test) { return std::to_string(test.param.status); });

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
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    const int left = std::atoi(request.target.c_str() + 1);
    connection.Write(left > 0 ? Redirect(302, "/" + std::to_string(left - 1))
                              : Response(200, "hello"));
  });
  const std::string allowed = server.Url("/" + std::to_string(kMostRedirects));
  const std::string refused = server.Url("/" + std::to_string(kMostRedirects + 1));
  for (const Way way : kAllWays) {
    EXPECT_EQ(Ask(way, allowed, "data"), (Answer{true, 200, "hello"}));
    EXPECT_EQ(LastRequest(server).target, "/0");
    EXPECT_EQ(ReasonOf(way, refused), TransferError::kTooManyRedirects);
    EXPECT_EQ(LastRequest(server).target, "/1");
  }
}

TEST_F(RedirectTest, FailsOnACircle) {
  const RawServer server(Always(Redirect(302, "/from")));
  Background background(server.Url("/from"));
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kFailed);
  EXPECT_EQ(server.requests().size(), std::size_t{kMostRedirects} + 1);
}

TEST_F(RedirectTest, ResolvesRelativeLocations) {
  const struct {
    const char* location;
    const char* target;
  } kCases[] = {{"c", "/a/c"},       {"/c", "/c"},         {"../c", "/c"},
                {"../../c", "/c"},   {"?x=1", "/a/b?x=1"}, {"./", "/a/"},
                {"c d", "/a/c%20d"}, {"/c#d", "/c"},       {"/%63", "/%63"}};
  for (const auto& item : kCases) {
    const RawServer server([&item](const RawRequest& request, RawConnection& connection) {
      connection.Write(request.target == "/a/b" ? Redirect(302, item.location)
                                                : Response(200, "hello"));
    });
    InternetData transport(Text(server.Url("/a/b")));
    EXPECT_TRUE(transport.Download()) << item.location;
    ASSERT_EQ(server.requests().size(), 2U) << item.location;
    EXPECT_EQ(server.requests()[1].target, item.target);
  }
}

TEST_F(RedirectTest, LocationMayNameAnotherServer) {
  const RawServer other(Always(Response(200, "other")));
  const RawServer server(RedirectTo(other.Url("/there")));
  InternetData transport(Text(server.Url("/from")));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(BodyOf(transport), "other");
  const RawServer relative(RedirectTo("//127.0.0.1:" + std::to_string(other.port()) + "/there"));
  InternetData second(Text(relative.Url("/from")));
  EXPECT_TRUE(second.Download());
  EXPECT_EQ(BodyOf(second), "other");
}

TEST_F(RedirectTest, RefusesOtherSchemes) {
  for (const char* location :
       {"file:///etc/passwd", "ftp://127.0.0.1/", "FILE:///etc/passwd", "gopher://127.0.0.1/",
        "dict://127.0.0.1/", "scp://127.0.0.1/", "telnet://127.0.0.1/", "file://localhost/etc"}) {
    const RawServer server(RedirectTo(location));
    for (const Way way : kAllWays) {
      EXPECT_EQ(ReasonOf(way, server.Url("/from")), TransferError::kForbiddenRedirect) << location;
    }
  }
}

// If it were followed, the status and the body could come from different responses.
TEST_F(RedirectTest, FailsWhenARedirectBreaksOffInItsHeaders) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    if (request.target != "/from") return static_cast<void>(connection.Write(Response(200, "no")));
    connection.Write("HTTP/1.1 302 Found\r\nLocation: /to\r\n");
    connection.Close();
  });
  InternetData transport(Text(server.Url("/from")));
  EXPECT_FALSE(transport.Download());
  ExpectFailureState(transport, 302);
  EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(RedirectTest, FailsWhenARedirectBreaksOffInItsBody) {
  for (const char* rest :
       {"Content-Length: 9\r\n\r\nmoved", "Transfer-Encoding: chunked\r\n\r\n5\r\nmoved\r\n",
        "Transfer-Encoding: chunked\r\n\r\n5\r\nmov"}) {
    const RawServer server(
        AlwaysThenClose("HTTP/1.1 302 Found\r\nLocation: /to\r\n" + std::string(rest)));
    for (const Way way : kAllWays) {
      EXPECT_EQ(ReasonOf(way, server.Url("/from")), TransferError::kCutOff) << rest;
    }
    EXPECT_EQ(LastRequest(server).target, "/from");
  }
}

TEST_F(RedirectTest, RedirectWithoutALocationIsAResponse) {
  for (const int status : {301, 302, 303, 307, 308}) {
    for (const char* location : {"", "Location:\r\n", "Location: \t\r\n"}) {
      const RawServer server(Always(Response(status, "nowhere", location)));
      for (const Way way : kAllWays) {
        EXPECT_EQ(Ask(way, server.Url(), "data"), (Answer{true, status, "nowhere"})) << location;
      }
    }
  }
}

TEST_F(RedirectTest, OtherStatusWithALocationIsAResponse) {
  for (const int status : {201, 300, 304, 305, 399, 404}) {
    const std::string body = status == 304 ? "" : "here";
    const RawServer server(Always(Response(status, body, "Location: /to\r\n")));
    for (const Way way : kAllWays) {
      EXPECT_EQ(Ask(way, server.Url(), "data"), (Answer{true, status, body}));
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

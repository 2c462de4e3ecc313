// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

constexpr char kLocalNames[] = "DNS:localhost,IP:127.0.0.1";

// The transport trusts one authority, which has issued some of the certificates.
class TlsTest : public TrustingTest {
 protected:
  // Expects that no transfer sends a request to a server with this certificate.
  static void ExpectRefused(const Certificate& certificate) {
    const RawServer server(Always(Response(200, "hello")), {&certificate});
    for (const std::string& url : {server.Url(), ByName(server)}) {
      for (const Way way : kAllWays) {
        EXPECT_EQ(AskForReason(way, url, "data"), Failed(0, TransferError::kTls)) << NameOf(way);
      }
    }
    EXPECT_EQ(server.requests().size(), 0U);
  }

  static std::string ByName(const RawServer& server) {
    return "https://localhost:" + std::to_string(server.port()) + "/";
  }

  const RawServer secure_{Always(Response(200, "hello")), tls_};
};

TEST_F(TlsTest, AcceptsAGoodCertificate) {
  EXPECT_EQ(Fetch(secure_.Url()), Received(200, "hello"));
  EXPECT_EQ(Fetch(ByName(secure_)), Received(200, "hello"));
  EXPECT_EQ(FetchInBackground(secure_.Url()), Received(200, "hello"));
}

// The second one has only the name of the trusted one.
TEST_F(TlsTest, RefusesAnUnknownAuthority) {
  for (const char* name : {"stranger", "trusted"}) {
    ExpectRefused(CertificateAuthority(name).Issue(kLocalNames));
  }
}

TEST_F(TlsTest, RefusesAnExpiredCertificate) {
  ExpectRefused(authority_.IssueExpired(kLocalNames));
}

TEST_F(TlsTest, RefusesACertificateOfAnotherServer) {
  ExpectRefused(authority_.Issue("DNS:other.example,IP:127.0.0.2"));
}

TEST_F(TlsTest, RefusesAnAuthorityThatTheHostDoesNotName) {
  InternetData::SetDefaults(TransferDefaults());
  ExpectRefused(certificate_);
}

TEST_F(TlsTest, FailsWithoutTheAuthorityFile) {
  Trust("missing.pem");
  ExpectRefused(certificate_);
}

TEST_F(TlsTest, DoesNotReuseAConnectionUnderAnotherAuthority) {
  EXPECT_TRUE(Fetch(secure_.Url()).received);
  CertificateAuthority("stranger").WriteTo(folder_.path() / "stranger.pem");
  Trust("stranger.pem");
  EXPECT_FALSE(Fetch(secure_.Url()).received);
}

// A body that ends with its connection is whole only after close_notify. Without it, anyone on the
// path may have cut the connection.
class TlsEndTest : public TlsTest {
 protected:
  // Makes five transfers from a server that ends with `end`, and gives their results. They are a
  // download on a new connection, on a used one and after a redirect from http, an upload and a
  // background download.
  std::vector<bool> Results(void (RawConnection::*end)()) const {
    const RawServer server(
        [end](const RawRequest& request, RawConnection& connection) {
          if (request.target == "/good") {
            connection.Write(Response(200, "hello"));
          } else {
            connection.Write("HTTP/1.1 200 OK\r\nX-Folded: 1\r\n 2\r\n\r\nhalf of it");
            (connection.*end)();
          }
        },
        tls_);
    const RawServer plain(Always(Redirect(302, server.Url())));
    std::vector<bool> results = {Fetch(server.Url()).received};
    EXPECT_TRUE(Fetch(server.Url("/good")).received);
    results.push_back(Fetch(server.Url()).received);
    results.push_back(Fetch(plain.Url()).received);
    results.push_back(Ask(Way::kSendAndRead, server.Url(), "data").received);
    results.push_back(FetchInBackground(server.Url()).received);
    return results;
  }
};

TEST_F(TlsEndTest, AcceptsABodyEndedByCloseNotify) {
  EXPECT_EQ(Results(&RawConnection::Close), std::vector<bool>(5, true));
}

TEST_F(TlsEndTest, RefusesABodyEndedWithoutCloseNotify) {
  EXPECT_EQ(Results(&RawConnection::Cut), std::vector<bool>(5, false));
  EXPECT_EQ(Results(&RawConnection::Reset), std::vector<bool>(5, false));
}

TEST_F(TlsTest, FailsWhenTheServerLeavesDuringAnUpload) {
  const RawServer server([](const RawRequest&, RawConnection& connection) { connection.Reset(); },
                         {&certificate_, false});
  EXPECT_EQ(Background(server.Url()).Upload(std::string(kLargeBody, 'x')), kFailed);
}

TEST_F(TlsTest, SurvivesAResetOfAnIdleConnection) {
  std::array<Event, 5> received;
  const RawServer server(
      [&received](const RawRequest& request, RawConnection& connection) {
        connection.Write(Response(200, "hello"));
        EXPECT_TRUE(received.at(static_cast<std::size_t>(request.connection)).Wait());
        connection.Reset();
      },
      tls_);
  for (Event& each : received) {
    EXPECT_EQ(Fetch(server.Url()), Received(200, "hello"));
    each.Set();
    EXPECT_TRUE(server.WaitUntilUnused());
  }
  EXPECT_EQ(server.connections(), 5);
}

TEST_F(TlsTest, RefusesARedirectFromHttpsToHttp) {
  for (const int status : {301, 302, 303, 307, 308}) {
    const RawServer plain(Always(Response(200, "plain")));
    const RawServer server(Always(Redirect(status, plain.Url())), tls_);
    EXPECT_TRUE(Fetch(plain.Url()).received);  // leaves an open connection
    for (const Way way : kAllWays) {
      EXPECT_EQ(ReasonOf(way, server.Url()), TransferError::kForbiddenRedirect);
    }
    EXPECT_EQ(plain.connections(), 1);
    EXPECT_EQ(plain.requests().size(), 1U);
  }
}

TEST_F(TlsTest, RefusesARedirectFromHttpsToHttpAtEveryHop) {
  const RawServer plain(Always(Response(200, "plain")));
  const RawServer server(
      [&plain](const RawRequest& request, RawConnection& connection) {
        connection.Write(Redirect(302, request.target == "/" ? "/next" : plain.Url()));
      },
      tls_);
  const RawServer first(Always(Redirect(302, server.Url())));
  EXPECT_FALSE(Fetch(first.Url()).received);
  EXPECT_EQ(server.requests().size(), 2U);
  EXPECT_EQ(plain.requests().size(), 0U);
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/certificates.h"
#include "tests/support/raw_server.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

constexpr char kLocalNames[] = "DNS:localhost,IP:127.0.0.1";

RawServer::Options With(const Certificate& certificate) {
  RawServer::Options options;
  options.certificate = &certificate;
  return options;
}

// The transport trusts one authority, which has issued some of the certificates.
class TlsTest : public TransportTest {
 protected:
  TlsTest() {
    const auto file = folder_.path() / "authority.pem";
    authority_.WriteTo(file);
    TransferDefaults defaults;
    defaults.ca_file = file.c_str();
    InternetData::SetDefaults(defaults);
  }

  static void ExpectRefused(const RawServer& server, const std::string& url) {
    InternetData transport((Text(url)));
    EXPECT_FALSE(transport.Download());
    ExpectFailureState(transport);
    Background background(url);
    ASSERT_TRUE(background.Start());
    EXPECT_EQ(background.WaitForEnd(), kFailed);
    EXPECT_EQ(server.requests().size(), 0U);
  }

  const TemporaryFolder folder_;
  const CertificateAuthority authority_{"trusted"};
  const Certificate good_ = authority_.Issue(kLocalNames);
};

TEST_F(TlsTest, AcceptsAGoodCertificate) {
  const RawServer server(Always(Response(200, "hello")), With(good_));
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(BodyOf(transport), "hello");
  InternetData by_name(Text("https://localhost:" + std::to_string(server.port()) + "/"));
  EXPECT_TRUE(by_name.Download());
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(BodyOf(*background.transport), "hello");
}

TEST_F(TlsTest, RefusesAnUnknownAuthority) {
  const CertificateAuthority stranger("stranger");
  const Certificate certificate = stranger.Issue(kLocalNames);
  const RawServer server(Always(Response(200, "hello")), With(certificate));
  ExpectRefused(server, server.Url());
}

TEST_F(TlsTest, RefusesAnAuthorityOfTheSameName) {
  const CertificateAuthority namesake("trusted");
  const Certificate certificate = namesake.Issue(kLocalNames);
  const RawServer server(Always(Response(200, "hello")), With(certificate));
  ExpectRefused(server, server.Url());
}

TEST_F(TlsTest, RefusesAnExpiredCertificate) {
  const Certificate certificate = authority_.IssueExpired(kLocalNames);
  const RawServer server(Always(Response(200, "hello")), With(certificate));
  ExpectRefused(server, server.Url());
}

TEST_F(TlsTest, RefusesACertificateOfAnotherServer) {
  const Certificate certificate = authority_.Issue("DNS:other.example,IP:127.0.0.2");
  const RawServer server(Always(Response(200, "hello")), With(certificate));
  ExpectRefused(server, server.Url());
  ExpectRefused(server, "https://localhost:" + std::to_string(server.port()) + "/");
}

TEST_F(TlsTest, RefusesAnAuthorityThatTheHostDoesNotName) {
  InternetData::SetDefaults(TransferDefaults());
  const RawServer server(Always(Response(200, "hello")), With(good_));
  ExpectRefused(server, server.Url());
}

TEST_F(TlsTest, FailsWithoutTheAuthorityFile) {
  TransferDefaults defaults;
  defaults.ca_file = (folder_.path() / "missing.pem").c_str();
  InternetData::SetDefaults(defaults);
  const RawServer server(Always(Response(200, "hello")), With(good_));
  ExpectRefused(server, server.Url());
}

TEST_F(TlsTest, DoesNotReuseAConnectionUnderAnotherAuthority) {
  const RawServer server(Always(Response(200, "hello")), With(good_));
  InternetData transport(Text(server.Url()));
  ASSERT_TRUE(transport.Download());
  const auto file = folder_.path() / "stranger.pem";
  CertificateAuthority("stranger").WriteTo(file);
  TransferDefaults defaults;
  defaults.ca_file = file.c_str();
  InternetData::SetDefaults(defaults);
  InternetData second(Text(server.Url()));
  EXPECT_FALSE(second.Download());
}

TEST_F(TlsTest, ReusesAConnection) {
  const RawServer server(Always(Response(200, "hello")), With(good_));
  for (int i = 0; i < 3; ++i) {
    InternetData transport(Text(server.Url()));
    EXPECT_TRUE(transport.Download());
  }
  EXPECT_EQ(server.connections(), 1);
}

TEST_F(TlsTest, FailsWhenTheServerSpeaksNoTls) {
  const RawServer server(AlwaysThenClose(Response(200, "hello")));
  SetInactivityTimeout(0.3F);
  InternetData transport(Text("https" + server.Url().substr(4)));
  EXPECT_FALSE(transport.Download());
  ExpectFailureState(transport);
}

TEST_F(TlsTest, FailsWhenABodyWithoutLengthIsCutOff) {
  // Without close_notify, anyone on the path may have cut the connection.
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) {
        connection.Write("HTTP/1.1 200 OK\r\n\r\nhalf of it");
        connection.Reset();
      },
      With(good_));
  InternetData transport(Text(server.Url()));
  EXPECT_FALSE(transport.Download());
}

// A body that ends with its connection is whole only after close_notify.
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
        With(good_));
    const RawServer plain(Always(Response(302, "", "Location: " + server.Url() + "\r\n")));
    InternetData first(Text(server.Url()));
    std::vector<bool> results = {first.Download()};
    InternetData opener(Text(server.Url("/good")));
    EXPECT_TRUE(opener.Download());
    results.push_back(first.Download());
    InternetData redirected(Text(plain.Url()));
    results.push_back(redirected.Download());
    SetSendData("data", first);
    results.push_back(Post(server.Url(), first));
    Background background(server.Url());
    EXPECT_TRUE(background.Start());
    results.push_back(background.WaitForEnd() == kReturned);
    return results;
  }
};

TEST_F(TlsEndTest, AcceptsABodyEndedByCloseNotify) {
  EXPECT_EQ(Results(&RawConnection::Close), std::vector<bool>(5, true));
}

TEST_F(TlsEndTest, RefusesABodyEndedWithoutCloseNotify) {
  EXPECT_EQ(Results(&RawConnection::Cut), std::vector<bool>(5, false));
}

TEST_F(TlsTest, FailsWhenTheServerLeavesDuringAnUpload) {
  RawServer::Options options = With(good_);
  options.reads_body = false;
  const RawServer server([](const RawRequest&, RawConnection& connection) { connection.Reset(); },
                         options);
  Background background(server.Url());
  SetSendData(std::string(kLargeBody, 'x'), *background.transport);
  ASSERT_TRUE(background.transport->UploadWithDelegate(background.delegate.get(), nullptr));
  EXPECT_EQ(background.WaitForEnd(), kFailed);
}

TEST_F(TlsTest, SurvivesAResetOfAnIdleConnection) {
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) {
        connection.Write(Response(200, "hello"));
        connection.Reset();
      },
      With(good_));
  for (int i = 0; i < 5; ++i) {
    InternetData transport(Text(server.Url()));
    transport.Download();
    EXPECT_TRUE(server.WaitUntilUnused());
  }
  EXPECT_EQ(server.connections(), 5);
}

TEST_F(TlsTest, FollowsARedirectFromHttpToHttps) {
  const RawServer secure(Always(Response(200, "secure")), With(good_));
  const RawServer server(Always(Response(302, "", "Location: " + secure.Url() + "\r\n")));
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(BodyOf(transport), "secure");
}

TEST_F(TlsTest, RefusesARedirectFromHttpsToHttp) {
  for (const int status : {301, 302, 303, 307, 308}) {
    const RawServer plain(Always(Response(200, "plain")));
    const RawServer server(Always(Response(status, "", "Location: " + plain.Url() + "\r\n")),
                           With(good_));
    for (const Way way : kAllWays) {
      EXPECT_EQ(ReasonOf(way, server.Url()), TransferError::kForbiddenRedirect);
    }
    EXPECT_EQ(plain.connections(), 0);
  }
}

TEST_F(TlsTest, RefusesARedirectFromHttpsToHttpAtEveryHop) {
  const RawServer plain(Always(Response(200, "plain")));
  const RawServer server(
      [&plain](const RawRequest& request, RawConnection& connection) {
        connection.Write(Response(
            302, "", "Location: " + (request.target == "/" ? "/next" : plain.Url()) + "\r\n"));
      },
      With(good_));
  const RawServer first(Always(Response(302, "", "Location: " + server.Url() + "\r\n")));
  InternetData transport(Text(first.Url()));
  EXPECT_FALSE(transport.Download());
  EXPECT_EQ(server.requests().size(), 2U);
  EXPECT_EQ(plain.requests().size(), 0U);
}

TEST_F(TlsTest, RefusesARedirectToHttpOnAnOpenConnection) {
  const RawServer plain(Always(Response(200, "plain")));
  InternetData opener(Text(plain.Url()));
  ASSERT_TRUE(opener.Download());
  const RawServer server(Always(Response(302, "", "Location: " + plain.Url("/leak") + "\r\n")),
                         With(good_));
  InternetData transport(Text(server.Url()));
  EXPECT_FALSE(transport.Download());
  EXPECT_EQ(plain.requests().size(), 1U);
}

TEST_F(TlsTest, FollowsARedirectBetweenHttpsServers) {
  const RawServer second(Always(Response(200, "second")), With(good_));
  const RawServer first(Always(Response(302, "", "Location: " + second.Url() + "\r\n")),
                        With(good_));
  InternetData transport(Text(first.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(BodyOf(transport), "second");
}

}  // namespace
}  // namespace stowra_test

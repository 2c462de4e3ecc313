// SPDX-License-Identifier: MIT
// Why a transfer fails, as InternetData::LastError and the listener tell it.

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/certificates.h"
#include "tests/support/closed_port.h"
#include "tests/support/comma_locale.h"
#include "tests/support/full_listener.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

// The servers of one row, and the URL to ask for.
struct Scene {
  std::string Serve(RawServer::Handler handler, RawServer::Options options = {}) {
    servers.push_back(std::make_unique<RawServer>(std::move(handler), options));
    return servers.back()->Url();
  }

  std::vector<std::shared_ptr<const void>> props;
  std::vector<std::unique_ptr<RawServer>> servers;
};

struct Row {
  const char* name;
  TransferError reason;
  std::function<std::string(Scene&)> set;  // returns the URL
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

std::function<std::string(Scene&)> Url(const char* url) {
  return [url](Scene&) { return url; };
}

std::function<std::string(Scene&)> Reply(const std::string& bytes) {
  return [bytes](Scene& scene) { return scene.Serve(AlwaysThenClose(bytes)); };
}

std::string Nobody(Scene& scene) {
  auto port = std::make_shared<const ClosedPort>();
  scene.props.push_back(port);
  return port->Url();
}

std::string Untrusted(Scene& scene) {
  auto certificate =
      std::make_shared<const Certificate>(CertificateAuthority("stranger").Issue("IP:127.0.0.1"));
  scene.props.push_back(certificate);
  return scene.Serve(Always(Response(200, "hello")), {certificate.get(), true, 0});
}

std::string NoTls(Scene& scene) {
  return "https" + scene.Serve([](const RawRequest&, RawConnection&) {}).substr(4);
}

std::string Full(Scene& scene) {
  auto listener = std::make_shared<const FullListener>();
  scene.props.push_back(listener);
  return listener->Url();
}

std::string CutOffGzip(Scene& scene) {
  return scene.Serve(AlwaysThenClose("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n" +
                                     Gzip("hello").substr(0, 15)));
}

std::string LargeBody(Scene& scene) {
  return scene.Serve(AlwaysThenClose(Response(200, std::string(1'000'001, 'x'))));
}

std::string LargeHeaders(Scene& scene) {
  const std::string field = "X: " + std::string(90'000, 'x') + "\r\n";
  return scene.Serve(AlwaysThenClose(Response(200, "", field + field + field)));
}

std::string Redirect(const std::string& location) {
  return Response(302, "moved", "Location: " + location + "\r\n");
}

class TransferErrorTest : public TransportTest, public ::testing::WithParamInterface<Row> {
 protected:
  static constexpr unsigned long kCap = 1'000'000;

  TransferErrorTest() {
    TransferDefaults defaults;
    if (GetParam().reason == TransferError::kSilent) defaults.inactivity_timeout = 0.5F;
    defaults.body_cap = kCap;
    InternetData::SetDefaults(defaults);
  }
};

TEST_P(TransferErrorTest, IsTheSameInEveryWay) {
  Scene scene;
  const std::string url = GetParam().set(scene);
  for (const Way way : kAllWays) EXPECT_EQ(ReasonOf(way, url), GetParam().reason) << NameOf(way);
}

INSTANTIATE_TEST_SUITE_P(
    Reasons, TransferErrorTest,
    ::testing::Values(
        Row{"BadUrl", TransferError::kBadUrl, Url("http://")},
        Row{"OtherScheme", TransferError::kBadUrl, Url("ftp://127.0.0.1/")},
        Row{"BadPort", TransferError::kBadUrl, Url("http://127.0.0.1:99999/")},
        Row{"NameNotFound", TransferError::kNameNotFound, Url("http://x.invalid/")},
        Row{"NobodyListens", TransferError::kNotConnected, Nobody},
        Row{"UntrustedCertificate", TransferError::kTls, Untrusted},
        Row{"SilentServer", TransferError::kSilent,
            [](Scene& scene) { return scene.Serve(Silence()); }},
        Row{"SilentConnection", TransferError::kSilent, Full},
        Row{"SilentHandshake", TransferError::kSilent, NoTls},
        Row{"NoReply", TransferError::kCutOff, Reply("")},
        Row{"CutOffInTheHeaders", TransferError::kCutOff, Reply("HTTP/1.1 200 OK\r\nCont")},
        Row{"CutOffInTheBody", TransferError::kCutOff,
            Reply("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhe")},
        Row{"CutOffInAChunk", TransferError::kCutOff,
            Reply("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhe")},
        Row{"CutOffInGzip", TransferError::kCutOff, CutOffGzip},
        Row{"NoHttp", TransferError::kMalformed, Reply("220 smtp.example ESMTP\r\n\r\n")},
        Row{"BadStatusLine", TransferError::kMalformed, Reply("HTTP/1.1 2000 OK\r\n\r\n")},
        Row{"SwitchedProtocol", TransferError::kMalformed,
            Reply("HTTP/1.1 101 Switching\r\nUpgrade: x\r\n\r\n")},
        Row{"HeaderWithoutColon", TransferError::kMalformed,
            Reply("HTTP/1.1 200 OK\r\nheader\r\n\r\n")},
        Row{"TwoLengths", TransferError::kMalformed,
            Reply(Response(200, "hello", "Content-Length: 6\r\n"))},
        Row{"BadChunk", TransferError::kMalformed,
            Reply("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nxyz\r\n")},
        Row{"CorruptGzip", TransferError::kMalformed,
            Reply(Response(200, "hello", "Content-Encoding: gzip\r\n"))},
        Row{"TooLargeBody", TransferError::kTooLarge, LargeBody},
        Row{"TooLargeHeaders", TransferError::kTooLarge, LargeHeaders},
        Row{"ContentEncoding", TransferError::kEncoding,
            Reply(Response(200, "hello", "Content-Encoding: br\r\n"))},
        Row{"TransferEncoding", TransferError::kEncoding,
            Reply("HTTP/1.1 200 OK\r\nTransfer-Encoding: gzip\r\n\r\nhello")},
        Row{"TooManyRedirects", TransferError::kTooManyRedirects,
            [](Scene& scene) { return scene.Serve(Always(Redirect("/"))); }},
        Row{"ForbiddenRedirect", TransferError::kForbiddenRedirect,
            Reply(Redirect("file:///etc/passwd"))},
        Row{"BadLocation", TransferError::kMalformed, Reply(Redirect("http://:80:80/"))}),
    [](const auto& test) { return test.param.name; });

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

TEST_F(LastErrorTest, InvalidRequestHeaderIsABadUrl) {
  InternetData transport(Text("http://127.0.0.1/"));
  transport.SetValueForHTTPSendHeaders("X Y", "1");
  EXPECT_FALSE(transport.Download());
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

TEST_F(LastErrorTest, ListenerHearsThatATransferWasDropped) {
  Event dropped;
  InternetData::SetTransferListener([&dropped](const TransferEvent& event) {
    if (event.kind == TransferEvent::Kind::kEnded && event.reason == TransferError::kDropped) {
      dropped.Set();
    }
  });
  const RawServer server(Silence());
  {
    Background background(server.Url());
    ASSERT_TRUE(background.Start());
    ASSERT_TRUE(server.WaitForRequests(1));
  }
  EXPECT_TRUE(dropped.Wait());
  InternetData::SetTransferListener(nullptr);
}

class ErrorTextTest : public TransportTest {};

TEST_F(ErrorTextTest, IsTheSameUnderADecimalComma) {
  const RawServer server(Silence());
  SetInactivityTimeout(0.25F);
  const auto text = [&server] {
    const EndListener listener;
    InternetData transport(Text(server.Url()));
    EXPECT_FALSE(transport.Download());
    return listener.last().error.utf8();
  };
  const std::string before = text();
  const CommaLocale locale;
  EXPECT_EQ(text(), before);
  EXPECT_TRUE(CommaLocale::IsInForce());
}

}  // namespace
}  // namespace stowra_test

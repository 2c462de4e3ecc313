// SPDX-License-Identifier: MIT
// Servers with wrong certificates, and TLS that breaks off.

#include <gtest/gtest.h>

#include <functional>

#include "tests/faults/fault.h"
#include "tests/support/certificates.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

constexpr char kLocalNames[] = "DNS:localhost,IP:127.0.0.1";

using Issue = std::function<Certificate(const CertificateAuthority&)>;

Certificate IssueGood(const CertificateAuthority& authority) {
  return authority.Issue(kLocalNames);
}

// Adds a server with a certificate from `issue`. The transport trusts the authority.
void AddServer(const Issue& issue, RawServer::Handler handler, Stage& stage) {
  const CertificateAuthority authority("trusted");
  const auto file = stage.Keep(std::make_shared<TemporaryFolder>()).path() / "authority.pem";
  authority.WriteTo(file);
  stage.defaults.ca_file = file.c_str();
  const Certificate certificate = issue(authority);
  stage.AddServer(std::move(handler), {&certificate});
}

Fault Untrusted(const char* name, const Issue& issue) {
  return {name, [issue](Stage& stage) { AddServer(issue, Always(Response(200, "")), stage); },
          Failed(0, TransferError::kTls), EveryWay()};
}

// The connection closes in order, but without close_notify. Anyone on the path may have cut it.
Fault Cut(const char* name, const char* bytes) {
  const auto say = [bytes](const RawRequest&, RawConnection& connection) {
    connection.Write(bytes);
    connection.Cut();
  };
  return {name, [say](Stage& stage) { AddServer(IssueGood, say, stage); },
          Failed(200, TransferError::kCutOff)};
}

Fault Downgrade() {
  const auto set = [](Stage& stage) {
    const RawServer& plain = stage.AddServer(Always(Response(200, "plain")));
    const std::string location = "Location: " + plain.Url() + "\r\n";
    stage.after = [&plain] { EXPECT_EQ(plain.connections(), 0); };
    AddServer(IssueGood, Always(Response(302, "moved", location)), stage);
  };
  return {"RedirectFromHttpsToHttp", set, Failed(302, TransferError::kForbiddenRedirect),
          EveryWay(), 1};
}

}  // namespace

std::vector<Fault> TlsFaults() {
  const auto expired = [](const CertificateAuthority& authority) {
    return authority.IssueExpired(kLocalNames);
  };
  const auto unknown = [](const CertificateAuthority&) {
    return CertificateAuthority("stranger").Issue(kLocalNames);
  };
  const auto other = [](const CertificateAuthority& authority) {
    return authority.Issue("DNS:other.example,IP:127.0.0.2");
  };
  return {Untrusted("CertificateExpired", expired),
          Untrusted("CertificateOfUnknownAuthority", unknown),
          Untrusted("CertificateOfAnotherHost", other),
          Cut("TlsCutInsideBodyWithLength", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhel"),
          Cut("TlsCutInsideBody", "HTTP/1.1 200 OK\r\n\r\nhalf of it"),
          Downgrade()};
}

}  // namespace stowra_test

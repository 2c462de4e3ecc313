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
  stage.defaults().ca_file = file.c_str();
  const Certificate certificate = issue(authority);
  RawServer::Options options;
  options.certificate = &certificate;
  stage.AddServer(std::move(handler), options);
}

Fault Untrusted(const char* name, const Issue& issue) {
  Fault fault = {name,
                 [issue](Stage& stage) { AddServer(issue, Always(Response(200, "")), stage); },
                 Failed(0, TransferError::kTls)};
  fault.ways = EveryWay();
  return fault;
}

// The connection closes in order, but without close_notify. Anyone on the path may have cut it.
Fault Cut(const char* name, const char* bytes) {
  Fault fault = {name,
                 [bytes](Stage& stage) {
                   const auto say = [bytes](const RawRequest&, RawConnection& connection) {
                     connection.Write(bytes);
                     connection.Cut();
                   };
                   AddServer(IssueGood, say, stage);
                 },
                 Failed(200, TransferError::kCutOff)};
  return fault;
}

Fault Downgrade() {
  Fault fault = {"RedirectFromHttpsToHttp",
                 [](Stage& stage) {
                   const RawServer& plain = stage.AddServer(Always(Response(200, "plain")));
                   const std::string location = "Location: " + plain.Url() + "\r\n";
                   stage.set_after([&plain] { EXPECT_EQ(plain.connections(), 0); });
                   AddServer(IssueGood, Always(Response(302, "moved", location)), stage);
                 },
                 Failed(302, TransferError::kForbiddenRedirect)};
  fault.ways = EveryWay();
  fault.kept_connections = 1;
  return fault;
}

}  // namespace

std::vector<Fault> TlsFaults() {
  return {
      Untrusted("CertificateExpired",
                [](const CertificateAuthority& authority) {
                  return authority.IssueExpired(kLocalNames);
                }),
      Untrusted("CertificateOfUnknownAuthority",
                [](const CertificateAuthority&) {
                  return CertificateAuthority("stranger").Issue(kLocalNames);
                }),
      Untrusted("CertificateOfAnotherHost",
                [](const CertificateAuthority& authority) {
                  return authority.Issue("DNS:other.example,IP:127.0.0.2");
                }),
      Cut("TlsCutInsideBodyWithLength", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhel"),
      Cut("TlsCutInsideBody", "HTTP/1.1 200 OK\r\n\r\nhalf of it"),
      Downgrade(),
  };
}

}  // namespace stowra_test

// SPDX-License-Identifier: MIT
// Certificates for TLS servers on this machine. Each test program makes new ones.

#ifndef TESTS_SUPPORT_CERTIFICATES_H_
#define TESTS_SUPPORT_CERTIFICATES_H_

#include <openssl/ssl.h>

#include <filesystem>
#include <memory>
#include <string>

namespace stowra_test {

struct OpensslDeleter {
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
  void operator()(SSL* session) const { SSL_free(session); }
};

// A certificate and its private key.
struct Certificate {
  std::unique_ptr<X509, OpensslDeleter> x509;
  std::unique_ptr<EVP_PKEY, OpensslDeleter> key;
};

// A certificate authority with a self-signed certificate, valid until tomorrow.
class CertificateAuthority {
 public:
  explicit CertificateAuthority(const std::string& name);

  // Valid from an hour ago until tomorrow. `names` has the form "DNS:name,IP:address".
  Certificate Issue(const std::string& names) const;

  // The same, but it expired yesterday.
  Certificate IssueExpired(const std::string& names) const;

  // Writes the authority's own certificate as PEM.
  void WriteTo(const std::filesystem::path& file) const;

 private:
  Certificate own_;
};

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_CERTIFICATES_H_

// SPDX-License-Identifier: MIT
// Making certificates.

#ifndef EMULATOR_TLS_CERTIFICATE_H_
#define EMULATOR_TLS_CERTIFICATE_H_

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>
#include <string>

namespace stowra_emulator {

struct FreeKey {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct FreeCertificate {
  void operator()(X509* certificate) const { X509_free(certificate); }
};
using TlsKey = std::unique_ptr<EVP_PKEY, FreeKey>;
using TlsCertificate = std::unique_ptr<X509, FreeCertificate>;

// Throws std::runtime_error with OpenSSL's reason unless `succeeded`.
void CheckTls(bool succeeded, const char* what);

// A new key on the curve P-256.
TlsKey MakeTlsKey();

// A certificate for an authority, signed by itself.
TlsCertificate MakeAuthority(const std::string& name, EVP_PKEY& key);

// A certificate for a server, signed by `authority` with its key. `alternative_names` is such as
// "DNS:localhost,IP:127.0.0.1".
TlsCertificate MakeServerCertificate(const std::string& alternative_names, EVP_PKEY& key,
                                     X509& authority, EVP_PKEY& authority_key);

}  // namespace stowra_emulator

#endif  // EMULATOR_TLS_CERTIFICATE_H_

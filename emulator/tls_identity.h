// SPDX-License-Identifier: MIT
// The certificate of this run.

#ifndef EMULATOR_TLS_IDENTITY_H_
#define EMULATOR_TLS_IDENTITY_H_

#include <openssl/ssl.h>

#include <memory>
#include <string>

namespace stowra_emulator {

// A new certificate for a server, and the new authority that signed it. Good for a day. The
// authority's certificate is in a temporary file, which the destructor removes.
class TlsIdentity {
 public:
  // The certificate is for localhost, 127.0.0.1, ::1 and `address`, an IP address.
  // Throws std::runtime_error if it cannot be made.
  explicit TlsIdentity(const std::string& address);
  ~TlsIdentity();
  TlsIdentity(const TlsIdentity&) = delete;
  TlsIdentity& operator=(const TlsIdentity&) = delete;

  // What a client needs to trust the server.
  const std::string& ca_file() const { return ca_file_; }

  SSL_CTX& context() const { return *context_; }

 private:
  struct Free {
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
  };

  std::unique_ptr<SSL_CTX, Free> context_;
  std::string ca_file_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_TLS_IDENTITY_H_

// SPDX-License-Identifier: MIT
#include "emulator/tls_identity.h"

#include <openssl/pem.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "emulator/tls_certificate.h"

namespace stowra_emulator {
namespace {

std::string NamesFor(const std::string& address) {
  std::string names = "DNS:localhost,IP:127.0.0.1,IP:::1";
  if (address != "127.0.0.1" && address != "::1") names += ",IP:" + address;
  return names;
}

// Returns the file's name.
std::string WriteToTemporaryFile(X509& certificate) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path();
  std::string name = (folder / "stowra-emulator-XXXXXX.pem").string();
  constexpr int kSuffixSize = 4;
  const int fd = ::mkstemps(name.data(), kSuffixSize);
  std::FILE* file = fd < 0 ? nullptr : ::fdopen(fd, "w");
  if (file == nullptr) throw std::system_error(errno, std::generic_category(), name);
  const bool was_written = PEM_write_X509(file, &certificate) == 1;
  const bool was_closed = std::fclose(file) == 0;
  if (!was_written || !was_closed) {
    ::unlink(name.c_str());
    throw std::system_error(errno, std::generic_category(), name);
  }
  return name;
}

}  // namespace

TlsIdentity::TlsIdentity(const std::string& address) : context_(SSL_CTX_new(TLS_server_method())) {
  CheckTls(context_ != nullptr, "context");
  const TlsKey authority_key = MakeTlsKey();
  const TlsCertificate authority = MakeAuthority("stowra-emulator, this run", *authority_key);
  const TlsKey key = MakeTlsKey();
  const TlsCertificate certificate =
      MakeServerCertificate(NamesFor(address), *key, *authority, *authority_key);
  CheckTls(SSL_CTX_set_min_proto_version(context_.get(), TLS1_2_VERSION) == 1, "version");
  CheckTls(SSL_CTX_use_certificate(context_.get(), certificate.get()) == 1, "certificate");
  CheckTls(SSL_CTX_use_PrivateKey(context_.get(), key.get()) == 1, "key");
  ca_file_ = WriteToTemporaryFile(*authority);
}

TlsIdentity::~TlsIdentity() { ::unlink(ca_file_.c_str()); }

}  // namespace stowra_emulator

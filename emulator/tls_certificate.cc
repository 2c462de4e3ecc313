// SPDX-License-Identifier: MIT
#include "emulator/tls_certificate.h"

#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <array>
#include <stdexcept>

namespace stowra_emulator {
namespace {

constexpr long kSecondsInDay = 24L * 60 * 60;

// So that a client whose clock is slow accepts it.
constexpr long kClockSkew = -60L * 60;

void SetSerialNumber(X509& certificate) {
  std::array<unsigned char, 8> bytes;
  CheckTls(RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) == 1, "random bytes");
  bytes.front() &= 0x7F;
  const std::unique_ptr<BIGNUM, decltype(&BN_free)> number(
      BN_bin2bn(bytes.data(), static_cast<int>(bytes.size()), nullptr), BN_free);
  CheckTls(number != nullptr &&
               BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(&certificate)) != nullptr,
           "serial number");
}

TlsCertificate Begin(const std::string& name, EVP_PKEY& key) {
  TlsCertificate certificate(X509_new());
  CheckTls(certificate != nullptr, "certificate");
  X509_set_version(certificate.get(), X509_VERSION_3);
  SetSerialNumber(*certificate);
  X509_gmtime_adj(X509_getm_notBefore(certificate.get()), kClockSkew);
  X509_gmtime_adj(X509_getm_notAfter(certificate.get()), kSecondsInDay);
  CheckTls(X509_set_pubkey(certificate.get(), &key) == 1, "public key");
  CheckTls(X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_UTF8,
                                      reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1,
                                      0) == 1,
           "name");
  return certificate;
}

void AddExtension(X509& certificate, X509& issuer, int kind, const std::string& value) {
  X509V3_CTX context;
  X509V3_set_ctx_nodb(&context);
  X509V3_set_ctx(&context, &issuer, &certificate, nullptr, nullptr, 0);
  const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
      X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()), X509_EXTENSION_free);
  CheckTls(extension != nullptr && X509_add_ext(&certificate, extension.get(), -1) == 1,
           value.c_str());
}

void Sign(X509& certificate, const X509& issuer, EVP_PKEY& issuer_key) {
  CheckTls(X509_set_issuer_name(&certificate, X509_get_subject_name(&issuer)) == 1, "issuer");
  CheckTls(X509_sign(&certificate, &issuer_key, EVP_sha256()) != 0, "signature");
}

}  // namespace

void CheckTls(bool succeeded, const char* what) {
  if (succeeded) return;
  std::array<char, 256> reason;
  ERR_error_string_n(ERR_get_error(), reason.data(), reason.size());
  throw std::runtime_error(std::string("cannot prepare TLS: ") + what + ": " + reason.data());
}

TlsKey MakeTlsKey() {
  TlsKey key(EVP_EC_gen("P-256"));
  CheckTls(key != nullptr, "key");
  return key;
}

TlsCertificate MakeAuthority(const std::string& name, EVP_PKEY& key) {
  TlsCertificate certificate = Begin(name, key);
  AddExtension(*certificate, *certificate, NID_basic_constraints, "critical,CA:TRUE");
  AddExtension(*certificate, *certificate, NID_key_usage, "critical,keyCertSign,cRLSign");
  AddExtension(*certificate, *certificate, NID_subject_key_identifier, "hash");
  Sign(*certificate, *certificate, key);
  return certificate;
}

TlsCertificate MakeServerCertificate(const std::string& alternative_names, EVP_PKEY& key,
                                     X509& authority, EVP_PKEY& authority_key) {
  TlsCertificate certificate = Begin("stowra-emulator", key);
  AddExtension(*certificate, authority, NID_basic_constraints, "critical,CA:FALSE");
  AddExtension(*certificate, authority, NID_key_usage, "critical,digitalSignature");
  AddExtension(*certificate, authority, NID_ext_key_usage, "serverAuth");
  AddExtension(*certificate, authority, NID_authority_key_identifier, "keyid:always");
  AddExtension(*certificate, authority, NID_subject_alt_name, alternative_names);
  Sign(*certificate, authority, authority_key);
  return certificate;
}

}  // namespace stowra_emulator

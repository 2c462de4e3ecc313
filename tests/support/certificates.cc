// SPDX-License-Identifier: MIT
#include "tests/support/certificates.h"

#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <random>
#include <stdexcept>

namespace stowra_test {
namespace {

constexpr long kHour = 60 * 60;
constexpr long kDay = 24 * kHour;

void Check(bool good, const char* what) {
  if (!good) throw std::runtime_error(std::string("cannot make a certificate: ") + what);
}

void AddExtension(X509& certificate, X509& issuer, int nid, const std::string& text) {
  X509V3_CTX context;
  X509V3_set_ctx_nodb(&context);
  X509V3_set_ctx(&context, &issuer, &certificate, nullptr, nullptr, 0);
  X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, &context, nid, text.c_str());
  Check(extension != nullptr, text.c_str());
  Check(X509_add_ext(&certificate, extension, -1) == 1, text.c_str());
  X509_EXTENSION_free(extension);
}

// Has a new key and is valid from `begin` to `end` (seconds from now).
Certificate MakeUnsigned(const std::string& common_name, long begin, long end) {
  Certificate made;
  made.key.reset(EVP_EC_gen("P-256"));
  made.x509.reset(X509_new());
  Check(made.key != nullptr && made.x509 != nullptr, "key");
  X509& x509 = *made.x509;
  X509_set_version(&x509, X509_VERSION_3);
  std::random_device random;
  ASN1_INTEGER_set(X509_get_serialNumber(&x509), static_cast<long>(random() >> 1));
  X509_gmtime_adj(X509_getm_notBefore(&x509), begin);
  X509_gmtime_adj(X509_getm_notAfter(&x509), end);
  X509_set_pubkey(&x509, made.key.get());
  Check(X509_NAME_add_entry_by_txt(X509_get_subject_name(&x509), "CN", MBSTRING_ASC,
                                   reinterpret_cast<const unsigned char*>(common_name.c_str()), -1,
                                   -1, 0) == 1,
        "name");
  return made;
}

void Sign(X509& certificate, const Certificate& issuer) {
  X509_set_issuer_name(&certificate, X509_get_subject_name(issuer.x509.get()));
  Check(X509_sign(&certificate, issuer.key.get(), EVP_sha256()) != 0, "signature");
}

Certificate IssueFor(const std::string& names, const Certificate& issuer, long begin, long end) {
  Certificate made = MakeUnsigned("test server", begin, end);
  AddExtension(*made.x509, *issuer.x509, NID_subject_alt_name, names);
  AddExtension(*made.x509, *issuer.x509, NID_basic_constraints, "critical,CA:FALSE");
  Sign(*made.x509, issuer);
  return made;
}

}  // namespace

CertificateAuthority::CertificateAuthority(const std::string& name)
    : own_(MakeUnsigned(name, -kHour, kDay)) {
  AddExtension(*own_.x509, *own_.x509, NID_basic_constraints, "critical,CA:TRUE");
  AddExtension(*own_.x509, *own_.x509, NID_key_usage, "critical,keyCertSign,cRLSign");
  Sign(*own_.x509, own_);
}

Certificate CertificateAuthority::Issue(const std::string& names) const {
  return IssueFor(names, own_, -kHour, kDay);
}

Certificate CertificateAuthority::IssueExpired(const std::string& names) const {
  return IssueFor(names, own_, -2 * kDay, -kDay);
}

void CertificateAuthority::WriteTo(const std::filesystem::path& file) const {
  std::FILE* const stream = std::fopen(file.c_str(), "w");
  Check(stream != nullptr, file.c_str());
  const bool written = PEM_write_X509(stream, own_.x509.get()) == 1;
  Check(std::fclose(stream) == 0 && written, file.c_str());
}

}  // namespace stowra_test

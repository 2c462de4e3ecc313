// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/failure.h"

#include <curl/curl.h>

namespace ovrant::internet {

namespace {

TransferError ErrorOf(CURLcode code, TransferPhase phase) {
  switch (code) {
    case CURLE_URL_MALFORMAT:
      return TransferError::kBadUrl;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return TransferError::kNameNotFound;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_ENGINE_NOTFOUND:
    case CURLE_SSL_ENGINE_SETFAILED:
    case CURLE_SSL_ENGINE_INITFAILED:
    case CURLE_SSL_CRL_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_CLIENTCERT:
      return TransferError::kTls;
    case CURLE_OPERATION_TIMEDOUT:
      return TransferError::kSilent;
    case CURLE_FILESIZE_EXCEEDED:
      return TransferError::kTooLarge;
    case CURLE_OUT_OF_MEMORY:
      return TransferError::kOutOfMemory;
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_UNSUPPORTED_PROTOCOL:   // a reply of HTTP/0.9
    case CURLE_BAD_FUNCTION_ARGUMENT:  // a header line without a colon
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
      return phase == TransferPhase::kConnecting ? TransferError::kNotConnected
                                                 : TransferError::kMalformed;
    default:
      return phase == TransferPhase::kConnecting ? TransferError::kNotConnected
                                                 : TransferError::kCutOff;
  }
}

// A header line of more than 100 KiB. libcurl before 8.6 reports it as lack of memory.
bool IsHeaderLineTooLong(CURLcode code, TransferPhase phase) {
  constexpr int kTooLarge = 100;  // CURLE_TOO_LARGE, which older headers do not have
  return (code == CURLE_OUT_OF_MEMORY || code == kTooLarge) && phase == TransferPhase::kInsideHead;
}

}  // namespace

Failure FailureOf(int curl_code, TransferPhase phase) {
  const auto code = static_cast<CURLcode>(curl_code);
  if (IsHeaderLineTooLong(code, phase)) return kHeadersTooLong;
  return {ErrorOf(code, phase), curl_easy_strerror(code)};
}

}  // namespace ovrant::internet

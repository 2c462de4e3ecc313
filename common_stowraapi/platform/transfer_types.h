// SPDX-License-Identifier: MIT
// The settings of all transfers, and the events that a listener gets.

#ifndef COMMON_STOWRAAPI_PLATFORM_TRANSFER_TYPES_H_
#define COMMON_STOWRAAPI_PLATFORM_TRANSFER_TYPES_H_

#include <map>

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {

// Why a transfer has no response.
enum class TransferError {
  kNone,          // it has one, whatever its status
  kBadUrl,        // the URL, a request header or another setting cannot be used
  kNameNotFound,  // of the server or of the proxy
  kNotConnected,  // no connection to the server or to the proxy
  kTls,           // no trusted TLS connection
  kSilent,        // no byte moved for the inactivity timeout
  kCutOff,        // the connection ended before the reply did
  kMalformed,     // the reply breaks the rules of HTTP or gzip
  kTooLarge,      // the body or the headers exceed their limit
  kEncoding,      // an encoding that was not offered
  kTooManyRedirects,
  kForbiddenRedirect,  // from https to http, or to another scheme
  kDropped,            // by the host
  kOutOfMemory,
};

// Where the time of a transfer went, in seconds. With redirects, each is the sum over all requests.
struct TransferTimes {
  double queued = 0;      // waiting for one of the places in the background
  double name = 0;        // looking up the name
  double connect = 0;     // connecting
  double tls = 0;         // the TLS handshake
  double first_byte = 0;  // from the request until its reply began
  double total = 0;       // all of it, from the call that started the transfer
};

// Settings for every transfer of the process (InternetData::SetDefaults). A field at its default
// keeps the library's own setting.
struct TransferDefaults {
  // A transfer fails after this many seconds without progress. Connecting has the same limit. A
  // value that is not above 0, or not finite, means 30 seconds.
  float inactivity_timeout = 0;

  // A transfer fails when its decoded body exceeds this many bytes. 0 means 256 MiB.
  unsigned long body_cap = 0;

  // PEM file of the trusted certificate authorities. Empty: the system's authorities.
  ovrant::utils::ovrant_ustring ca_file;

  // "scheme://host:port". Empty: the proxy that the environment names, if any.
  ovrant::utils::ovrant_ustring proxy;

  // Sent as User-Agent. Empty: none is sent.
  ovrant::utils::ovrant_ustring user_agent;

  // Sent with each request to the URL that a transfer was given. A header of the same name that the
  // request sets wins. Many of those URLs come from replies, so secrets belong in the next field.
  ovrant::utils::StringMap extra_request_headers;

  // Sent with each request to one origin, also after a redirect to it. The key is a URL of that
  // origin, such as "https://a.example" or "http://127.0.0.1:8080". These headers win over
  // extra_request_headers. A header of the same name that the request sets wins over these.
  std::map<ovrant::utils::ovrant_ustring, ovrant::utils::StringMap> origin_request_headers;
};

// One step of one transfer. The listener may use it only during the call.
struct TransferEvent {
  enum class Kind { kStarted, kProgress, kEnded };

  Kind kind = Kind::kStarted;

  // Numbers the transfers of the process from 1.
  unsigned long number = 0;

  // "GET" or "POST", as the transfer began.
  const char* method = "";

  // The context pointer of the delegate. Null for a blocking transfer.
  void* context = nullptr;

  // The URL that the transfer was given, before any redirect.
  ovrant::utils::ovrant_ustring url;

  // HTTP status, 0 until a response begins.
  int status = 0;

  // Bytes of decoded body so far. After a failure too.
  unsigned long bytes_received = 0;

  // Bytes of body on the wire so far, and in all. They differ from the decoded bytes when the body
  // is compressed. The total is 0 when it is not known.
  unsigned long wire_bytes_received = 0;
  unsigned long bytes_expected = 0;

  // Bytes of request body so far, and in all.
  unsigned long bytes_sent = 0;
  unsigned long bytes_to_send = 0;

  // At kEnded, why no response was received. kNone and empty when one was, whatever its status. The
  // text is English, for logs.
  TransferError reason = TransferError::kNone;
  ovrant::utils::ovrant_ustring error;

  // Complete at kEnded.
  TransferTimes times;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_TRANSFER_TYPES_H_

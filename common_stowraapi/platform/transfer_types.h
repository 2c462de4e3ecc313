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
  kBody,  // the host's source or sink failed
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

  // A transfer fails when its decoded body exceeds this many bytes. 0 means 256 MiB in memory, and
  // no limit for a body that a BodySink takes.
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

// How much a listener hears (InternetData::SetTransferListener).
enum class TransferDetail {
  kProgress,  // kStarted, kProgress and kEnded
  kSteps,     // all kinds
  kHeads,     // all kinds, and the header fields of each request and response
};

// Whether the steps show secrets. If not, "***" stands for these:
//
//   - A URL's user name and password, the values of its query, and its fragment.
//   - The value of a header field whose name contains auth, cookie, key, password, secret, session
//     or token, in any letter case.
//   - The value of a header field that TransferDefaults::origin_request_headers has.
//
// The path of a URL and the other header fields are shown as they are. So is TransferEvent::url in
// kStarted, kProgress and kEnded.
enum class TransferSecrets { kBlanked, kShown };

// One step of one transfer. The listener may use it only during the call.
struct TransferEvent {
  enum class Kind {
    kStarted,
    kProgress,
    kEnded,

    // With TransferDetail::kSteps. A background transfer is queued before it starts. Then come, for
    // each request of the transfer, kConnected to kResponse, and kRedirected if another request
    // follows. A failed transfer ends early. Nothing follows kQueued when the transfer is dropped
    // before it starts.
    kQueued,
    kConnected,   // the request can be sent
    kRequest,     // it goes out
    kFirstByte,   // the response begins
    kResponse,    // its head is complete; also an interim one, with status 1xx
    kRedirected,  // another request follows
    kPosted,      // after kEnded: the delegate's notification was posted, its observers returned
  };

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

  // Bytes of request body so far, and in all. The total is 0 when it is not known.
  unsigned long bytes_sent = 0;
  unsigned long bytes_to_send = 0;

  // At kEnded, why no response was received. kNone and empty when one was, whatever its status. The
  // text is English, for logs.
  TransferError reason = TransferError::kNone;
  ovrant::utils::ovrant_ustring error;

  // Complete at kEnded.
  TransferTimes times;

  // At kEnded, of a response with status 400 or more: two of its header fields, and the first 16
  // KiB of its decoded body as text. Otherwise empty.
  ovrant::utils::ovrant_ustring content_type;
  ovrant::utils::ovrant_ustring retry_after;
  ovrant::utils::ovrant_ustring error_body;

  // The members below are for listeners of steps. `times` is then what has passed so far, in every
  // kind. `total` tells when the step was taken.

  // Counts the requests of the transfer from 1. The method and the URL of this one.
  unsigned int request = 0;
  const char* request_method = "";
  ovrant::utils::ovrant_ustring request_url;

  // From kConnected on: the numeric address and port, the proxy's if there is one, and whether the
  // connection was kept from an earlier request. `tls` is such as "TLSv1.3". It is empty without
  // TLS, with other TLS libraries than OpenSSL, and on a connection that was made without a
  // listener of steps.
  ovrant::utils::ovrant_ustring address;
  int port = 0;
  bool is_reused = false;
  ovrant::utils::ovrant_ustring tls;

  // With TransferDetail::kHeads. kRequest: the request line and the fields as sent. kResponse: the
  // status line and the fields. kEnded: the part of a response's head that came before a failure.
  // Each line ends with a line feed.
  ovrant::utils::ovrant_ustring head;

  // kRedirected: the URL of the next request.
  ovrant::utils::ovrant_ustring redirect_url;

  // kPosted: its name. Otherwise empty.
  ovrant::utils::ovrant_ustring notification;

  // The system's number of the thread, 0 where it is not known.
  unsigned long thread = 0;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_TRANSFER_TYPES_H_

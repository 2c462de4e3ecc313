// The settings of all transfers, and the events that a listener gets.

#ifndef COMMON_STOWRAAPI_PLATFORM_TRANSFER_TYPES_H_
#define COMMON_STOWRAAPI_PLATFORM_TRANSFER_TYPES_H_

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {

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

  // Sent with each request. A header of the same name that the request sets wins.
  ovrant::utils::StringMap extra_request_headers;
};

// One step of one transfer. The listener may use it only during the call.
struct TransferEvent {
  enum class Kind { kStarted, kProgress, kEnded };

  Kind kind = Kind::kStarted;

  // The URL that the transfer was given, before any redirect.
  ovrant::utils::ovrant_ustring url;

  // HTTP status, 0 until a response begins.
  int status = 0;

  // Bytes of decoded body so far, and in all. The total is 0 when it is not known.
  unsigned long bytes_received = 0;
  unsigned long bytes_expected = 0;

  // Bytes of request body so far, and in all.
  unsigned long bytes_sent = 0;
  unsigned long bytes_to_send = 0;

  // At kEnded, the reason why no response was received. Empty when one was, whatever its status.
  ovrant::utils::ovrant_ustring error;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_TRANSFER_TYPES_H_

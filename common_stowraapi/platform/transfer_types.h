// What a host sets for all transfers, and what it is told of each.

#ifndef COMMON_STOWRAAPI_PLATFORM_TRANSFER_TYPES_H_
#define COMMON_STOWRAAPI_PLATFORM_TRANSFER_TYPES_H_

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {

// Settings for every transfer of the process. A field at its default leaves the library's own
// setting in force.
struct TransferDefaults {
  // Seconds without progress, and seconds to connect, after which a transfer fails. 0: 30 seconds.
  float inactivity_timeout = 0;

  // Bytes of decoded body beyond which a transfer fails. 0: 256 MiB.
  unsigned long body_cap = 0;

  // PEM file of the certificate authorities to trust instead of the system's.
  ovrant::utils::ovrant_ustring ca_file;

  // "scheme://host:port". Empty: the proxy that the environment names, if any.
  ovrant::utils::ovrant_ustring proxy;

  // Sent as User-Agent. Empty: none is sent.
  ovrant::utils::ovrant_ustring user_agent;

  // Sent with each request; a header that a request sets itself wins.
  ovrant::utils::StringMap extra_request_headers;
};

// One step of one transfer. The reference to it is valid for the call only.
struct TransferEvent {
  enum class Kind { kStarted, kProgress, kEnded };

  Kind kind = Kind::kStarted;

  // As the transfer was given it, before any redirect.
  ovrant::utils::ovrant_ustring url;

  // HTTP status, 0 until a response has begun.
  int status = 0;

  // Bytes of decoded body so far, and in all where the server has said it (else 0).
  unsigned long bytes_received = 0;
  unsigned long bytes_expected = 0;

  // Bytes of request body so far, and in all.
  unsigned long bytes_sent = 0;
  unsigned long bytes_to_send = 0;

  // kEnded: why no response was received. Empty when one was, whatever its status.
  ovrant::utils::ovrant_ustring error;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_TRANSFER_TYPES_H_

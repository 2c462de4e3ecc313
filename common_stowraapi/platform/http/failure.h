// SPDX-License-Identifier: MIT
// Why a transfer has failed.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_FAILURE_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_FAILURE_H_

#include "common_stowraapi/platform/transfer_types.h"

namespace ovrant::internet {

// A reason and its English text. The text is static unless a function says otherwise.
struct Failure {
  TransferError error = TransferError::kNone;
  const char* text = "";

  explicit operator bool() const { return error != TransferError::kNone; }
};

inline constexpr Failure kNoFailure;
inline constexpr Failure kOutOfMemory{TransferError::kOutOfMemory, "out of memory"};
inline constexpr Failure kDropped{TransferError::kDropped, "dropped by the host"};
inline constexpr Failure kBodyTooLarge{TransferError::kTooLarge,
                                       "the response's body is too large"};
inline constexpr Failure kHeadersTooLong{TransferError::kTooLarge,
                                         "the response's headers are too long"};
inline constexpr Failure kHeadersCutOff{TransferError::kCutOff,
                                        "the connection closed inside the response's headers"};
inline constexpr Failure kBodyCutOff{TransferError::kCutOff,
                                     "the connection closed inside the response's body"};

// A transfer's state when libcurl ended it.
enum class TransferPhase { kConnecting, kInsideHead, kInsideBody };

// What a CURLcode other than CURLE_OK means. The text is libcurl's own for the code.
Failure FailureOf(int curl_code, TransferPhase phase);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_FAILURE_H_

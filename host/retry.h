// SPDX-License-Identifier: MIT
// When to ask a server again.

#ifndef HOST_RETRY_H_
#define HOST_RETRY_H_

#include <chrono>
#include <ctime>
#include <optional>
#include <string>

#include "common_stowraapi/platform/transfer_types.h"

namespace stowra {

// Whether the same request may succeed later: the connection failed or broke off, the server fell
// silent, or it answered with status 429, 502, 503 or 504.
bool MaySucceedLater(const ovrant::internet::TransferEvent& end);

// How long to wait before attempt 2, 3 and so on: 1 second, then twice as long each time, up to a
// minute. The header Retry-After of the response says better: a number of seconds or an HTTP date.
// Nothing if it asks for more than an hour.
std::optional<std::chrono::seconds> PauseBefore(int attempt, const std::string& retry_after,
                                                std::time_t now);

}  // namespace stowra

#endif  // HOST_RETRY_H_

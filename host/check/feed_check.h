// SPDX-License-Identifier: MIT
// Explains what the library makes of a search feed.

#ifndef HOST_CHECK_FEED_CHECK_H_
#define HOST_CHECK_FEED_CHECK_H_

#include <string>

#include "host/check/check_report.h"

namespace stowra {

// For a host that opens model files up to `max_qmf_version`.
CheckReport CheckFeed(std::string document, int max_qmf_version);

// The same for a document whose root is an entry.
CheckReport CheckEntryDocument(const std::string& document, int max_qmf_version);

}  // namespace stowra

#endif  // HOST_CHECK_FEED_CHECK_H_

// SPDX-License-Identifier: MIT
// Explains what the library makes of one entry of a feed.

#ifndef HOST_CHECK_ENTRY_CHECK_H_
#define HOST_CHECK_ENTRY_CHECK_H_

#include "host/check/check_report.h"
#include "host/check/watched_xml.h"

namespace stowra {

// Loads entry `number`, at which `reader` stands, into an item. The reader stands there again on
// return, and its look-ups have been taken.
CheckedPart CheckEntry(WatchedXml& reader, int number, int max_qmf_version);

}  // namespace stowra

#endif  // HOST_CHECK_ENTRY_CHECK_H_

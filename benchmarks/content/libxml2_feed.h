// SPDX-License-Identifier: MIT
// Reads a feed with libxml2. The SAX2 events are its fastest way, the tree its usual way.

#ifndef BENCHMARKS_CONTENT_LIBXML2_FEED_H_
#define BENCHMARKS_CONTENT_LIBXML2_FEED_H_

#include <string_view>

#include "benchmarks/content/feed_record.h"

namespace stowra_bench {

// Both read `document` into an empty feed. False if it is not a complete feed.
bool LoadWithLibxml2(std::string_view document, int max_qmf_version, StdFeed& feed);
bool LoadWithLibxml2Tree(std::string_view document, int max_qmf_version, StdFeed& feed);

}  // namespace stowra_bench

#endif  // BENCHMARKS_CONTENT_LIBXML2_FEED_H_

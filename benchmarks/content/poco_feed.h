// SPDX-License-Identifier: MIT
// Reads a feed with POCO, from SAX events or from a tree.

#ifndef BENCHMARKS_CONTENT_POCO_FEED_H_
#define BENCHMARKS_CONTENT_POCO_FEED_H_

#include <string_view>

#include "benchmarks/content/feed_record.h"

namespace stowra_bench {

// Both read `document` into an empty feed. False if it is not a complete feed.
bool LoadWithPoco(std::string_view document, int max_qmf_version, StdFeed& feed);
bool LoadWithPocoTree(std::string_view document, int max_qmf_version, StdFeed& feed);

}  // namespace stowra_bench

#endif  // BENCHMARKS_CONTENT_POCO_FEED_H_

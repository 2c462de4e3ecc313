// A feed read with POCO: from the events of its SAX parser, and from the tree that it builds.

#ifndef BENCHMARKS_CONTENT_POCO_FEED_H_
#define BENCHMARKS_CONTENT_POCO_FEED_H_

#include <string_view>

#include "benchmarks/content/feed_record.h"

namespace stowra_bench {

// Both add what `document` holds to an empty feed. False when it is no complete feed.
bool LoadWithPoco(std::string_view document, int max_qmf_version, StdFeed& feed);
bool LoadWithPocoTree(std::string_view document, int max_qmf_version, StdFeed& feed);

}  // namespace stowra_bench

#endif  // BENCHMARKS_CONTENT_POCO_FEED_H_

// A feed read with libxml2: from the events of its SAX2 parser, which is its fastest way, and from
// the tree that it builds, which is its usual one.

#ifndef BENCHMARKS_CONTENT_LIBXML2_FEED_H_
#define BENCHMARKS_CONTENT_LIBXML2_FEED_H_

#include <string_view>

#include "benchmarks/content/feed_record.h"

namespace stowra_bench {

// Both add what `document` holds to an empty feed. False when it is no complete feed.
bool LoadWithLibxml2(std::string_view document, int max_qmf_version, StdFeed& feed);
bool LoadWithLibxml2Tree(std::string_view document, int max_qmf_version, StdFeed& feed);

}  // namespace stowra_bench

#endif  // BENCHMARKS_CONTENT_LIBXML2_FEED_H_

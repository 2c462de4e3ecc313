// SPDX-License-Identifier: MIT
// The limit for reading a feed: the parser alone.

#ifndef BENCHMARKS_CONTENT_BARE_EXPAT_H_
#define BENCHMARKS_CONTENT_BARE_EXPAT_H_

#include <string_view>

namespace stowra_bench {

// Parses `document` with a new expat parser in namespace mode, without handlers. False if it is not
// well-formed.
bool ParseBare(std::string_view document);

}  // namespace stowra_bench

#endif  // BENCHMARKS_CONTENT_BARE_EXPAT_H_

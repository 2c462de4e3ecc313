// The least that reading a feed can cost: the parser alone.

#ifndef BENCHMARKS_CONTENT_BARE_EXPAT_H_
#define BENCHMARKS_CONTENT_BARE_EXPAT_H_

#include <string_view>

namespace stowra_bench {

// Parses `document` with a fresh expat in namespace mode, without any handler. False when it is not
// well-formed.
bool ParseBare(std::string_view document);

}  // namespace stowra_bench

#endif  // BENCHMARKS_CONTENT_BARE_EXPAT_H_

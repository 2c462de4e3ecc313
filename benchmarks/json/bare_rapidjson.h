// The least that loading a JSON text can cost: the parser alone.

#ifndef BENCHMARKS_JSON_BARE_RAPIDJSON_H_
#define BENCHMARKS_JSON_BARE_RAPIDJSON_H_

#include <string>

namespace stowra_bench {

// Parses `text` into a fresh RapidJSON document as packaged, without its SIMD switch. False when it
// is not JSON.
bool ParseBareJson(const std::string& text);

}  // namespace stowra_bench

#endif  // BENCHMARKS_JSON_BARE_RAPIDJSON_H_

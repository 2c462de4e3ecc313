// SPDX-License-Identifier: MIT
// The limit for loading a JSON text: the parser alone.

#ifndef BENCHMARKS_JSON_BARE_RAPIDJSON_H_
#define BENCHMARKS_JSON_BARE_RAPIDJSON_H_

#include <string>

namespace stowra_bench {

// Parses `text` into a new RapidJSON document, as packaged and without its SIMD switch. False if it
// is not JSON.
bool ParseBareJson(const std::string& text);

// The same in RapidJSON's fastest way: in place, which spoils `text`, and with the processor's
// vector instructions.
bool ParseJsonFastest(std::string& text);

}  // namespace stowra_bench

#endif  // BENCHMARKS_JSON_BARE_RAPIDJSON_H_

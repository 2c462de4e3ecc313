// SPDX-License-Identifier: MIT
// The settings change RapidJSON's inline functions. A namespace of its own keeps them apart.
#define RAPIDJSON_NAMESPACE rapidjson_fastest
#define RAPIDJSON_NAMESPACE_BEGIN namespace rapidjson_fastest {
#define RAPIDJSON_NAMESPACE_END }
#if defined(__SSE2__)
#define RAPIDJSON_SSE2
#elif defined(__ARM_NEON)
#define RAPIDJSON_NEON
#endif

#include <rapidjson/document.h>

#include "benchmarks/json/bare_rapidjson.h"

namespace stowra_bench {

bool ParseJsonFastest(std::string& text) {
  rapidjson_fastest::Document document;
  document.ParseInsitu(text.data());
  return !document.HasParseError();
}

}  // namespace stowra_bench

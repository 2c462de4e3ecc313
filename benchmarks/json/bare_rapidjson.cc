// SPDX-License-Identifier: MIT
#include "benchmarks/json/bare_rapidjson.h"

#include <rapidjson/document.h>

namespace stowra_bench {

bool ParseBareJson(const std::string& text) {
  rapidjson::GenericDocument<rapidjson::UTF8<>> document;
  rapidjson::GenericStringStream<rapidjson::UTF8<>> input(text.c_str());
  document.ParseStream<rapidjson::kParseNoFlags>(input);
  return !document.HasParseError();
}

}  // namespace stowra_bench

// SPDX-License-Identifier: MIT
#include "benchmarks/report/environment.h"

#include <nlohmann/json.hpp>

namespace stowra_bench {

Environment ReadEnvironment(std::istream& file) {
  // ordered_json keeps the order of the libraries.
  const auto document = nlohmann::ordered_json::parse(file);
  Environment environment;
  environment.system = document.at("system").get<std::string>();
  environment.compiler = document.at("compiler").get<std::string>();
  environment.flags = document.at("flags").get<std::string>();
  for (const auto& [name, version] : document.at("libraries").items()) {
    environment.libraries.emplace_back(name, version.get<std::string>());
  }
  return environment;
}

}  // namespace stowra_bench

// Where and with what the measurements were made.

#ifndef BENCHMARKS_REPORT_ENVIRONMENT_H_
#define BENCHMARKS_REPORT_ENVIRONMENT_H_

#include <istream>
#include <string>
#include <utility>
#include <vector>

namespace stowra_bench {

struct Environment {
  std::string processor;
  std::string system;
  std::string compiler;
  std::string flags;
  std::vector<std::pair<std::string, std::string>> libraries;  // name and version
};

// Reads what the build wrote down (see environment.json.in); the processor stays empty. Throws a
// std::exception for another document.
Environment ReadEnvironment(std::istream& file);

}  // namespace stowra_bench

#endif  // BENCHMARKS_REPORT_ENVIRONMENT_H_

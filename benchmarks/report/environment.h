// SPDX-License-Identifier: MIT
// The machine and the software of the measurements.

#ifndef BENCHMARKS_REPORT_ENVIRONMENT_H_
#define BENCHMARKS_REPORT_ENVIRONMENT_H_

#include <istream>
#include <string>
#include <utility>
#include <vector>

namespace stowra_bench {

struct Environment {
  std::string commit;  // that was measured
  std::string processor;
  std::string system;
  std::string compiler;
  std::string flags;
  std::vector<std::pair<std::string, std::string>> libraries;  // name and version
};

// Reads the file that the build writes (environment.json.in). Commit and processor stay empty.
// Throws a std::exception for another document.
Environment ReadEnvironment(std::istream& file);

}  // namespace stowra_bench

#endif  // BENCHMARKS_REPORT_ENVIRONMENT_H_

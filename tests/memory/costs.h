// SPDX-License-Identifier: MIT
// Measures the memory that a parser needs.

#ifndef TESTS_MEMORY_COSTS_H_
#define TESTS_MEMORY_COSTS_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace stowra_test {

// Parses an input and returns an object that owns the results, or null on failure.
using Parse = std::function<std::shared_ptr<void>(const std::string& input)>;

// Heap bytes in addition to the input.
struct Costs {
  std::size_t peak = 0;   // the most during parsing
  std::size_t final = 0;  // held by the results
  std::size_t left = 0;   // after the results are freed
};

// Parses twice and measures the second time. The first call may allocate memory that stays for all
// later calls.
Costs MeasureCosts(const Parse& parse, const std::string& input);

}  // namespace stowra_test

#endif  // TESTS_MEMORY_COSTS_H_

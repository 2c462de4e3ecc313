// SPDX-License-Identifier: MIT
// The library's parsers, with inputs and the memory that each may use.

#ifndef TESTS_MEMORY_PARSERS_H_
#define TESTS_MEMORY_PARSERS_H_

#include <ostream>
#include <string>
#include <vector>

#include "tests/memory/costs.h"

namespace stowra_test {

struct MeasuredInput {
  std::string name;   // letters and digits
  std::string input;  // some hundred KB, so that fixed costs do not matter
  Parse parse;
  bool is_taken;      // whether the parser accepts the input
  double most_peak;   // Costs::peak as a multiple of the input's size
  double most_final;  // the same for Costs::final
};

// GoogleTest prints parameters with it.
void PrintTo(const MeasuredInput& measured, std::ostream* out);

std::vector<MeasuredInput> MeasuredInputs();

}  // namespace stowra_test

#endif  // TESTS_MEMORY_PARSERS_H_

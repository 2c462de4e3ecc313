// The library's parsers, each with the inputs that say what it costs.

#ifndef TESTS_MEMORY_PARSERS_H_
#define TESTS_MEMORY_PARSERS_H_

#include <ostream>
#include <string>
#include <vector>

#include "tests/memory/costs.h"

namespace stowra_test {

struct MeasuredInput {
  std::string name;   // letters and digits
  std::string input;  // some hundred KB, so that what is fixed does not count
  Parse parse;
  bool is_taken;     // whether the parser says that it can use the input
  double most_peak;  // multiples of the input's size
  double most_final;
};

// For GoogleTest.
void PrintTo(const MeasuredInput& measured, std::ostream* out);

std::vector<MeasuredInput> MeasuredInputs();

}  // namespace stowra_test

#endif  // TESTS_MEMORY_PARSERS_H_

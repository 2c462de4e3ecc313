// What it costs in memory to read something.

#ifndef TESTS_MEMORY_COSTS_H_
#define TESTS_MEMORY_COSTS_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace stowra_test {

// Reads an input into an object. What it gives holds the results, and frees them.
using Parse = std::function<std::shared_ptr<void>(const std::string& input)>;

// Bytes of the heap beyond the input's own.
struct Costs {
  std::size_t peak = 0;   // while the input was read
  std::size_t final = 0;  // that the results hold
  std::size_t left = 0;   // after they have been freed
};

// Of the second reading: what the first one leaves for good is no cost of an input.
Costs MeasureCosts(const Parse& parse, const std::string& input);

}  // namespace stowra_test

#endif  // TESTS_MEMORY_COSTS_H_

// SPDX-License-Identifier: MIT
// stowra-instructions: runs each case once to warm up and once to be counted, and prints its name.
// count.sh runs it under callgrind.

#include <cstdio>
#include <exception>

#include "benchmarks/instructions/case.h"

// callgrind counts only the instructions inside this function.
extern "C" __attribute__((noinline)) bool stowra_counted_case(const stowra_bench::Case& counted) {
  return counted.run();
}

namespace stowra_bench {
namespace {

bool RunAll() {
  Cases cases;
  AddTextCases(cases);
  AddNotificationCases(cases);
  AddJsonCases(cases);
  AddServicesCases(cases);
  AddContentCases(cases);
  for (const Case& each : cases) {
    if (!each.run() || !stowra_counted_case(each)) {
      std::fprintf(stderr, "stowra-instructions: %s: not the expected result\n", each.name.c_str());
      return false;
    }
    std::puts(each.name.c_str());
  }
  return true;
}

}  // namespace
}  // namespace stowra_bench

int main() {
  try {
    return stowra_bench::RunAll() ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "stowra-instructions: %s\n", error.what());
    return 1;
  }
}

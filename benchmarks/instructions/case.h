// SPDX-License-Identifier: MIT
// The cases whose instructions are counted.

#ifndef BENCHMARKS_INSTRUCTIONS_CASE_H_
#define BENCHMARKS_INSTRUCTIONS_CASE_H_

#include <functional>
#include <string>
#include <vector>

namespace stowra_bench {

// A small piece of work of the library or of its limit. It has the name of the benchmark for the
// same work.
struct Case {
  std::string name;
  std::function<bool()> run;  // false on an unexpected result
};

using Cases = std::vector<Case>;

// Make the inputs and append the cases of one room.
void AddTextCases(Cases& cases);
void AddNotificationCases(Cases& cases);
void AddJsonCases(Cases& cases);
void AddServicesCases(Cases& cases);
void AddContentCases(Cases& cases);

}  // namespace stowra_bench

#endif  // BENCHMARKS_INSTRUCTIONS_CASE_H_

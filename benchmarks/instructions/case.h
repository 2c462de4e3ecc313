// What is counted.

#ifndef BENCHMARKS_INSTRUCTIONS_CASE_H_
#define BENCHMARKS_INSTRUCTIONS_CASE_H_

#include <functional>
#include <string>
#include <vector>

namespace stowra_bench {

// One piece of work, of the library or of its limit, named like the benchmark of the same work.
struct Case {
  std::string name;
  std::function<bool()> run;  // false when the result is not the expected one
};

using Cases = std::vector<Case>;

// Append the cases of one room. Inputs are made here, once.
void AddTextCases(Cases& cases);
void AddNotificationCases(Cases& cases);
void AddJsonCases(Cases& cases);
void AddServicesCases(Cases& cases);
void AddContentCases(Cases& cases);

}  // namespace stowra_bench

#endif  // BENCHMARKS_INSTRUCTIONS_CASE_H_

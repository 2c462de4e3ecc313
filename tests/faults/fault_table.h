// SPDX-License-Identifier: MIT
// Records what each fault cost, and prints a table when the program ends.

#ifndef TESTS_FAULTS_FAULT_TABLE_H_
#define TESTS_FAULTS_FAULT_TABLE_H_

#include <chrono>
#include <functional>
#include <string>

namespace stowra_test {

// Resources that the process holds.
struct Holdings {
  long blocks = 0;      // of memory, 0 when they cannot be counted
  long long bytes = 0;  // in them
  int descriptors = 0;
};

// Many more than the blocks that the pool of connections may keep, so that a leak shows.
inline constexpr int kRuns = 100;

// More than the TLS sessions that libcurl remembers.
inline constexpr int kWarmUpRuns = 10;

struct FaultRow {
  std::string fault;
  std::string way;
  int runs = 0;
  std::string answer = {};
  std::chrono::duration<double, std::milli> longest{0};
  Holdings before = {};
  Holdings after = {};
};

// Runs `run` to warm up, then row.runs times. Fills in the row's holdings, expects that they have
// not grown, and adds the row to the table.
//
// `run` returns after everything that it started has ended. `settle` makes a transfer that
// succeeds. libcurl then closes the connections that ended.
void ExpectNothingIsLeft(FaultRow row, int warm_up_runs, const std::function<void(FaultRow&)>& run,
                         const std::function<void()>& settle);

}  // namespace stowra_test

#endif  // TESTS_FAULTS_FAULT_TABLE_H_

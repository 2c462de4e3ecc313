// What each fault cost, as a table that is printed when the program ends.

#ifndef TESTS_FAULTS_FAULT_TABLE_H_
#define TESTS_FAULTS_FAULT_TABLE_H_

#include <chrono>
#include <functional>
#include <string>

namespace stowra_test {

// What the process holds.
struct Holdings {
  long blocks = 0;      // of memory; 0 where they cannot be counted
  long long bytes = 0;  // in them
  int descriptors = 0;
};

// What it holds now. The servers' threads do not count for memory, and do for descriptors.
Holdings CurrentHoldings();

// Of memory, in the handles of libcurl that wait for the next transfer: how many do, and what they
// remember of the last one, is a matter of time.
inline constexpr int kKeptBlocks = 320;

// The same where a transfer may not have to wait for the server at all, which makes them more.
inline constexpr int kMostKeptBlocks = 1200;

struct FaultRow {
  std::string fault;
  std::string way;
  int runs = 0;
  int kept_blocks =
      kKeptBlocks;  // that idle handles of libcurl may keep more after the runs than before
  std::string answer;
  std::chrono::duration<double, std::milli> longest{0};
  Holdings before;
  Holdings after;
};

// Adds to the table.
void Record(FaultRow row);

// Runs `run` a few times so that what is kept for the next time is kept, and then row.runs times.
// Fills the row's holdings in, expects that they have not grown, and records the row.
// `run` returns once all that it began has ended. `settle` makes a transfer that succeeds, which
// shows that one can be made, and has libcurl let go of what it remembers of the last that failed.
void ExpectNothingIsLeft(FaultRow row, int warm_up_runs, const std::function<void(FaultRow&)>& run,
                         const std::function<void()>& settle);

}  // namespace stowra_test

#endif  // TESTS_FAULTS_FAULT_TABLE_H_

// SPDX-License-Identifier: MIT
// Runs code once for each of its allocations and fails that allocation.

#ifndef TESTS_ALLOCATION_EACH_FAILURE_H_
#define TESTS_ALLOCATION_EACH_FAILURE_H_

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <type_traits>

#include "tests/support/failing_malloc.h"

#ifdef STOWRA_FAILS_ALLOCATIONS

namespace stowra_test {

// The outcome of one run.
struct Outcome {
  long failures = 0;  // allocations that failed
  bool threw = false;
  bool result = false;  // what the work returned, if that is a bool

  bool failed() const { return failures > 0; }
};

// Whether all blocks allocated since `watch` began are freed. Waits a millisecond at most, since
// another thread may still be freeing some.
bool GivesAllBack(const MemoryWatch& watch);

// A run that leaves blocks is repeated up to this number of runs, while caches fill up.
inline constexpr int kMostTries = 10;

// Prints how many runs had a failure, and adds it to the sum that the program prints at its end.
void CountFailingRuns(long runs);

// Calls `work` with the result of `make`, under FailingMalloc(allowed, threads, mode). Then calls
// `check` with that state and the outcome, when allocations succeed again.
template <typename Make, typename Work, typename Check>
Outcome RunWithFailure(long allowed, Threads threads, FailingMalloc::Mode mode, const Make& make,
                       const Work& work, const Check& check) {
  auto state = make();
  Outcome outcome;
  {
    const FailingMalloc failing(allowed, threads, mode);
    try {
      if constexpr (std::is_same_v<decltype(work(state)), bool>) {
        outcome.result = work(state);
      } else {
        work(state);
      }
    } catch (const std::bad_alloc&) {
      outcome.threw = true;
    }
    outcome.failures = failing.failures();
  }
  check(state, outcome);
  return outcome;
}

// Repeats the run with one more allowed allocation each time, until none fails. Does so twice:
// first one allocation fails alone, then all later ones fail too. Repeats a run that leaves blocks,
// because a cache fills up but a leak grows on each run. Returns how many runs had a failure.
template <typename Make, typename Work, typename Check>
long FailEachAllocationOf(const Make& make, const Work& work, const Check& check,
                          Threads threads = Threads::kThis) {
  constexpr long kAll = 1'000'000'000;
  long failing_runs = 0;
  RunWithFailure(kAll, threads, FailingMalloc::Mode::kOnce, make, work, check);
  for (const auto mode : {FailingMalloc::Mode::kOnce, FailingMalloc::Mode::kFromThenOn}) {
    for (long allowed = 0;; ++allowed) {
      SCOPED_TRACE(testing::Message()
                   << "after " << allowed << " allocations, mode " << static_cast<int>(mode));
      bool failed = false;
      bool gave_all_back = false;
      for (int tries = 0; tries < kMostTries && !gave_all_back; ++tries) {
        const MemoryWatch watch(Threads::kAll);
        failed = RunWithFailure(allowed, threads, mode, make, work, check).failed() || failed;
        if (testing::Test::HasFailure()) return failing_runs;
        gave_all_back = GivesAllBack(watch);
      }
      EXPECT_TRUE(gave_all_back) << "blocks are leaked";
      if (!failed || !gave_all_back) break;
      ++failing_runs;
    }
  }
  CountFailingRuns(failing_runs);
  return failing_runs;
}

// The same with a default-constructed State.
template <typename State, typename Work, typename Check>
long FailEachAllocation(const Work& work, const Check& check, Threads threads = Threads::kThis) {
  return FailEachAllocationOf([] { return State(); }, work, check, threads);
}

// The same for work that must throw whenever an allocation fails. Calls `check` only then.
template <typename State>
long FailThrowing(
    const std::function<void(State&)>& work,
    const std::function<void(State&)>& check = [](State&) {}) {
  return FailEachAllocation<State>(work, [&](State& state, Outcome outcome) {
    EXPECT_EQ(outcome.threw, outcome.failed());
    if (outcome.threw) check(state);
  });
}

// The same for a call without a state.
inline long FailCall(const std::function<void()>& call) {
  struct Nothing {};
  return FailThrowing<Nothing>([&](Nothing&) { call(); });
}

}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS

#endif  // TESTS_ALLOCATION_EACH_FAILURE_H_

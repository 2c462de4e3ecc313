// A piece of work with each of its allocations failing in turn.

#ifndef TESTS_ALLOCATION_EACH_FAILURE_H_
#define TESTS_ALLOCATION_EACH_FAILURE_H_

#include <gtest/gtest.h>

#include <new>

#include "tests/support/failing_malloc.h"

#ifdef STOWRA_FAILS_ALLOCATIONS

namespace stowra_test {

// What came of one run.
struct Outcome {
  long failures = 0;  // allocations that failed
  bool threw = false;

  bool failed() const { return failures > 0; }
};

// Whether the process holds no more blocks than when `watch` began, or does so at once: another
// thread may yet be freeing what it is done with.
bool GivesAllBack(const MemoryWatch& watch);

// How often a run is made again that leaves more blocks than it found.
// The transport alone keeps up to 16 used handles before it clears them away.
inline constexpr int kMostTries = 60;

// Adds to what the test and its program print: how many runs had a failure.
void CountFailingRuns(long runs);

inline constexpr long kNoneFails = 1'000'000'000;

// Runs `work` on what `make` makes while the allocation after `allowed` others fails, then `check`
// on that state and the outcome, with all the memory there is.
template <typename Make, typename Work, typename Check>
Outcome RunWithFailure(long allowed, Threads threads, FailingMalloc::Mode mode, const Make& make,
                       const Work& work, const Check& check) {
  auto state = make();
  Outcome outcome;
  {
    const FailingMalloc failing(allowed, threads, mode);
    try {
      work(state);
    } catch (const std::bad_alloc&) {
      outcome.threw = true;
    }
    outcome.failures = failing.failures();
  }
  check(state, outcome);
  return outcome;
}

// The runs with one failing allocation more each time until none fails: each alone, then each with
// all that follow. A run that leaves more blocks of memory than it found is made again, and again:
// a cache is filled at some time, a leak grows with each. Returns how many allocations failed.
template <typename Make, typename Work, typename Check>
long FailEachAllocationOf(const Make& make, const Work& work, const Check& check,
                          Threads threads = Threads::kThis) {
  long failing_runs = 0;
  RunWithFailure(kNoneFails, threads, FailingMalloc::Mode::kOnce, make, work, check);
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
      EXPECT_TRUE(gave_all_back) << "blocks of memory are left";
      if (!failed || !gave_all_back) break;
      ++failing_runs;
    }
  }
  CountFailingRuns(failing_runs);
  return failing_runs;
}

// The same on a State that needs nothing to be made.
template <typename State, typename Work, typename Check>
long FailEachAllocation(const Work& work, const Check& check, Threads threads = Threads::kThis) {
  return FailEachAllocationOf([] { return State(); }, work, check, threads);
}

}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS

#endif  // TESTS_ALLOCATION_EACH_FAILURE_H_

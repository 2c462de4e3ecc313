// SPDX-License-Identifier: MIT
#include "tests/allocation/each_failure.h"

#include <chrono>
#include <cstdio>
#include <thread>

#ifdef STOWRA_FAILS_ALLOCATIONS

namespace stowra_test {
namespace {

long all_failing_runs = 0;

class Summary final : public testing::Environment {
 public:
  void TearDown() override {
    std::printf("allocations failed in this program: %ld\n", all_failing_runs);
  }
};

testing::Environment* const summary = testing::AddGlobalTestEnvironment(new Summary);

}  // namespace

bool GivesAllBack(const MemoryWatch& watch) {
  constexpr std::chrono::milliseconds kAtOnce(1);
  const auto limit = std::chrono::steady_clock::now() + kAtOnce;
  while (watch.blocks() > 0) {
    if (std::chrono::steady_clock::now() > limit) return false;
    std::this_thread::yield();
  }
  return true;
}

void CountFailingRuns(long runs) {
  EXPECT_NE(summary, nullptr);
  all_failing_runs += runs;
  std::printf("allocations failed: %ld\n", runs);
}

}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS

// SPDX-License-Identifier: MIT
#include "tests/faults/fault_table.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

#include "tests/support/failing_malloc.h"

namespace stowra_test {
namespace {

// More than the program ever opens, and quick to search.
constexpr rlim_t kMostDescriptors = 256;

std::vector<FaultRow>& Rows() {
  static std::vector<FaultRow> rows;
  return rows;
}

// A few connections more or less may be open. That depends on timing.
constexpr long kKeptBlocks = 40;
constexpr long long kKeptBytes = 64 << 10;

int CountDescriptors() {
  int count = 0;
  for (int descriptor = 0; descriptor < static_cast<int>(kMostDescriptors); ++descriptor) {
    if (fcntl(descriptor, F_GETFD) != -1) ++count;
  }
  return count;
}

class Program final : public ::testing::Environment {
 public:
  void SetUp() override {
    rlimit limit = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    limit.rlim_cur = std::min(limit.rlim_cur, kMostDescriptors);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  }

  void TearDown() override {
    if (Rows().empty()) return;
    std::printf(
        "| fault | way | runs | answer | ms | kB before | after | descriptors before | after |\n"
        "|---|---|---|---|---|---|---|---|---|\n");
    for (const FaultRow& row : Rows()) {
      std::printf("| %s | %s | %d | %s | %.1f | %lld | %lld | %d | %d |\n", row.fault.c_str(),
                  row.way.c_str(), row.runs, row.answer.c_str(), row.longest.count(),
                  row.before.bytes / 1000, row.after.bytes / 1000, row.before.descriptors,
                  row.after.descriptors);
    }
  }
};

::testing::Environment* const program = ::testing::AddGlobalTestEnvironment(new Program);

// What the process holds now. Memory of the servers' threads is left out, but not their
// descriptors.
Holdings CurrentHoldings() {
  Holdings holdings;
#ifdef STOWRA_COUNTS_MEMORY
  static const MemoryWatch watch(Threads::kAll);
  holdings.blocks = watch.blocks();
  holdings.bytes = static_cast<long long>(watch.live());
#endif
  holdings.descriptors = CountDescriptors();
  return holdings;
}

}  // namespace

void ExpectNothingIsLeft(FaultRow row, int warm_up_runs, const std::function<void(FaultRow&)>& run,
                         const std::function<void()>& settle) {
  CurrentHoldings();
  const auto run_times = [&](int count) {
    for (int i = 0; i < count && !::testing::Test::HasFatalFailure(); ++i) run(row);
    settle();
  };
  run_times(warm_up_runs);
  row.longest = {};
  row.before = CurrentHoldings();
  run_times(row.runs);
  row.after = CurrentHoldings();
  EXPECT_LE(row.after.blocks, row.before.blocks + kKeptBlocks);
  EXPECT_LE(row.after.bytes, row.before.bytes + kKeptBytes);
  EXPECT_LE(row.after.descriptors, row.before.descriptors);
  Rows().push_back(std::move(row));
}

}  // namespace stowra_test

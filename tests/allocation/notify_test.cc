// SPDX-License-Identifier: MIT
// Notifications without memory.

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>

#include "tests/allocation/each_failure.h"
#include "tests/platform/notify/notification_fixture.h"

#ifdef STOWRA_FAILS_ALLOCATIONS

namespace stowra_test {
namespace {

// Counts its calls and allocates nothing in them.
struct Counting {
  int calls = 0;
  Observer observer{[this] { ++calls; }};
};

int CallsOf(Counting& counting) {
  counting.calls = 0;
  Send(kName);
  Send(kOtherName);
  return counting.calls;
}

TEST(NotificationAllocationTest, FailedAddLeavesTheCenterAsItWas) {
  for (const bool name_is_new : {true, false}) {
    Counting neighbour;
    if (!name_is_new) Register({&neighbour.observer});
    const auto add = [](Counting& added) { Register({&added.observer}); };
    const auto check = [&](Counting& added, Outcome outcome) {
      EXPECT_EQ(outcome.threw, outcome.failed());
      EXPECT_EQ(CallsOf(added), outcome.threw ? 0 : 1);
      EXPECT_EQ(CallsOf(neighbour), name_is_new ? 0 : 1);
      add(added);
      EXPECT_EQ(CallsOf(added), 1);
    };
    EXPECT_GT(FailEachAllocation<Counting>(add, check), 2);
  }
}

TEST(NotificationAllocationTest, FailedAddKeepsTheObserversOtherNames) {
  struct Added : Counting {
    Added() { Register({&observer}); }
  };
  const auto add = [](Added& added) { Register({&added.observer}, kOtherName); };
  const auto check = [](Added& added, Outcome outcome) {
    EXPECT_EQ(CallsOf(added), outcome.threw ? 1 : 2);
  };
  EXPECT_GT(FailEachAllocation<Added>(add, check), 2);
}

TEST(NotificationAllocationTest, NamesWithoutObserversLeaveNoMemory) {
  Counting neighbour;
  Register({&neighbour.observer});
  Counting added;
  bool threw = true;
  for (long allowed = 0; threw; ++allowed) {
    const std::string name = kOtherName + std::to_string(allowed);
    const MemoryWatch watch;
    try {
      const FailingMalloc failing(allowed);
      Register({&added.observer}, name.c_str());
      threw = false;
    } catch (const std::bad_alloc&) {
    }
    if (!threw) {
      EXPECT_GT(watch.blocks(), 2);
      Center().RemoveObserver(&added.observer);
    }
    EXPECT_EQ(watch.blocks(), 0) << allowed;
  }
}

TEST(NotificationAllocationTest, PassingObserversLeaveNoMemoryInADelivery) {
  Counting passing;
  long blocks_left = -1;
  std::size_t bytes_left = 0;
  Observer churn([&] {
    const MemoryWatch watch;
    for (int i = 0; i < 200'000; ++i) {
      Register({&passing.observer});
      Center().RemoveObserver(&passing.observer);
    }
    blocks_left = watch.blocks();
#ifdef STOWRA_COUNTS_MEMORY
    bytes_left = watch.live();
#endif
  });
  Counting neighbour;
  Register({&churn, &neighbour.observer});
  Send();
  EXPECT_EQ(blocks_left, 0);
  EXPECT_EQ(bytes_left, 0U);
  EXPECT_EQ(neighbour.calls, 1);
}

TEST(NotificationAllocationTest, SendAndRemoveNeedNoMemory) {
  struct Crowd {
    Crowd() {
      for (Counting& member : members) Register({&member.observer});
    }
    Counting members[20];
  };
  const auto work = [](Crowd& crowd) {
    Send();
    Center().RemoveObserver(&crowd.members[0].observer);
    Send();
  };
  const auto check = [](Crowd& crowd, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_EQ(crowd.members[0].calls, 1);
    EXPECT_EQ(crowd.members[19].calls, 2);
  };
  EXPECT_EQ(FailEachAllocation<Crowd>(work, check), 0);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS

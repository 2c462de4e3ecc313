// SPDX-License-Identifier: MIT
// Notifications without memory.

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>

#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"
#include "tests/allocation/each_failure.h"

#ifdef STOWRA_FAILS_ALLOCATIONS

namespace stowra_test {
namespace {

CNotificationCenter& Center() { return *CNotificationCenter::Default(); }

class CountingObserver final : public ovrant::IObserver {
 public:
  ~CountingObserver() override { Center().RemoveObserver(this); }

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* /*name*/, void* /*payload*/) override { ++calls; }

  int calls = 0;
};

constexpr char kName[] = "AllocationTest, a name that no small buffer holds";
constexpr char kOtherName[] = "AllocationTest, another one";

int CallsOf(CountingObserver& observer) {
  observer.calls = 0;
  Center().SendNotification(kName, nullptr);
  Center().SendNotification(kOtherName, nullptr);
  return observer.calls;
}

TEST(NotificationAllocationTest, FailedAddLeavesTheCenterAsItWas) {
  for (const bool name_is_new : {true, false}) {
    CountingObserver neighbour;
    if (!name_is_new) Center().AddObserver(kName, &neighbour);
    const auto add = [](CountingObserver& observer) { Center().AddObserver(kName, &observer); };
    const auto check = [&](CountingObserver& observer, Outcome outcome) {
      EXPECT_EQ(outcome.threw, outcome.failed());
      EXPECT_EQ(CallsOf(observer), outcome.threw ? 0 : 1);
      EXPECT_EQ(CallsOf(neighbour), name_is_new ? 0 : 1);
      add(observer);
      EXPECT_EQ(CallsOf(observer), 1);
    };
    EXPECT_GT(FailEachAllocation<CountingObserver>(add, check), 2);
  }
}

TEST(NotificationAllocationTest, FailedAddKeepsTheObserversOtherNames) {
  struct Added {
    Added() { Center().AddObserver(kName, &observer); }
    CountingObserver observer;
  };
  const auto add = [](Added& added) { Center().AddObserver(kOtherName, &added.observer); };
  const auto check = [](Added& added, Outcome outcome) {
    EXPECT_EQ(CallsOf(added.observer), outcome.threw ? 1 : 2);
  };
  EXPECT_GT(FailEachAllocation<Added>(add, check), 2);
}

TEST(NotificationAllocationTest, NamesWithoutObserversLeaveNoMemory) {
  CountingObserver neighbour;
  Center().AddObserver(kName, &neighbour);
  CountingObserver observer;
  bool threw = true;
  for (long allowed = 0; threw; ++allowed) {
    const std::string name = kOtherName + std::to_string(allowed);
    const MemoryWatch watch;
    try {
      const FailingMalloc failing(allowed);
      Center().AddObserver(name.c_str(), &observer);
      threw = false;
    } catch (const std::bad_alloc&) {
    }
    if (!threw) {
      EXPECT_GT(watch.blocks(), 2);
      Center().RemoveObserver(&observer);
    }
    EXPECT_EQ(watch.blocks(), 0) << allowed;
  }
}

// Adds and removes another observer many times inside one notification.
class Churn final : public ovrant::IObserver {
 public:
  ~Churn() override { Center().RemoveObserver(this); }

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* name, void* /*payload*/) override {
    const MemoryWatch watch;
    for (int i = 0; i < 200'000; ++i) {
      Center().AddObserver(name, &passing_);
      Center().RemoveObserver(&passing_);
    }
    blocks_left = watch.blocks();
#ifdef STOWRA_COUNTS_MEMORY
    bytes_left = watch.live();
#endif
  }

  long blocks_left = -1;
  std::size_t bytes_left = 0;

 private:
  CountingObserver passing_;
};

TEST(NotificationAllocationTest, PassingObserversLeaveNoMemoryInADelivery) {
  CountingObserver neighbour;
  Churn churn;
  Center().AddObserver(kName, &churn);
  Center().AddObserver(kName, &neighbour);
  Center().SendNotification(kName, nullptr);
  EXPECT_EQ(churn.blocks_left, 0);
  EXPECT_EQ(churn.bytes_left, 0U);
  EXPECT_EQ(neighbour.calls, 1);
}

TEST(NotificationAllocationTest, SendAndRemoveNeedNoMemory) {
  struct Crowd {
    Crowd() {
      for (CountingObserver& observer : observers) Center().AddObserver(kName, &observer);
    }
    CountingObserver observers[20];
  };
  const auto work = [](Crowd& crowd) {
    Center().SendNotification(kName, nullptr);
    Center().RemoveObserver(&crowd.observers[0]);
    Center().SendNotification(kName, nullptr);
  };
  const auto check = [](Crowd& crowd, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_EQ(crowd.observers[0].calls, 1);
    EXPECT_EQ(crowd.observers[19].calls, 2);
  };
  EXPECT_EQ(FailEachAllocation<Crowd>(work, check), 0);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS

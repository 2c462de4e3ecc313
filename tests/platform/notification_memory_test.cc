// The notification center with each of its allocations failing in turn.

#include <gtest/gtest.h>

#include <string>

#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"
#include "tests/support/failing_new.h"

#ifdef STOWRA_COUNTS_ALLOCATIONS

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

constexpr char kName[] = "NotificationMemoryTest, a name that no small buffer holds";
constexpr char kOtherName[] = "NotificationMemoryTest, another one";

// What an observer is called for after each failed addition of it, under `name`, and at last after
// one that succeeds. Returns how many failed.
int FailToAdd(CountingObserver& observer, const char* name, int calls_before) {
  for (int failures = 0;; ++failures) {
    if (!RunsOutOfMemory([&] { Center().AddObserver(name, &observer); }, failures)) return failures;
    observer.calls = 0;
    Center().SendNotification(kName, nullptr);
    Center().SendNotification(kOtherName, nullptr);
    EXPECT_EQ(observer.calls, calls_before) << failures;
  }
}

TEST(NotificationMemoryTest, AFailedAdditionLeavesTheCenterAsItWas) {
  Center();
  const long allocations = LiveAllocations();
  {
    CountingObserver first;
    EXPECT_GT(FailToAdd(first, kName, 0), 2);
    EXPECT_GT(FailToAdd(first, kOtherName, 1), 2);
    CountingObserver second;
    EXPECT_GT(FailToAdd(second, kName, 0), 1);
    first.calls = 0;
    second.calls = 0;
    Center().SendNotification(kName, nullptr);
    EXPECT_EQ(first.calls, 1);
    EXPECT_EQ(second.calls, 1);
  }
  // The table of names keeps its buckets.
  EXPECT_LE(LiveAllocations(), allocations + 1);
}

TEST(NotificationMemoryTest, SendingAndRemovingNeedNoMemory) {
  CountingObserver observers[3];
  for (CountingObserver& observer : observers) Center().AddObserver(kName, &observer);
  EXPECT_FALSE(RunsOutOfMemory([] { Center().SendNotification(kName, nullptr); }, 0));
  EXPECT_FALSE(RunsOutOfMemory([&] { Center().RemoveObserver(&observers[0]); }, 0));
  EXPECT_FALSE(RunsOutOfMemory([] { Center().SendNotification(kName, nullptr); }, 0));
  EXPECT_EQ(observers[0].calls, 1);
  EXPECT_EQ(observers[2].calls, 2);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_COUNTS_ALLOCATIONS

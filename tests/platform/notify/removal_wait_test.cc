// SPDX-License-Identifier: MIT
// Which calls a removal waits for.

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include "common_stowraapi/platform/notify/delivery.h"
#include "tests/platform/notify/notification_fixture.h"
#include "tests/support/event.h"

namespace stowra_test {
namespace {

using ovrant::NoWaitScope;

class RemovalWaitTest : public NotificationCenterTest {};

// An observer whose first call runs a function. Nested calls only show that it is still registered.
class Removable {
 public:
  Removable(const char* name, std::function<void()> function)
      : name_(name), observer_([this, function = std::move(function)] {
          if (calls_++ == 0) function();
        }) {
    Register({&observer_}, name_);
  }

  Observer& observer() { return observer_; }

  // Call it inside the function. Returns when another thread is removing the observer. That thread
  // keeps the lock until it waits, so it waits for this call then.
  void WaitUntilRemoved() {
    int before = 0;
    do {
      std::this_thread::yield();
      before = calls_;
      Send(name_);
    } while (calls_ > before);
  }

 private:
  const char* const name_;
  std::atomic<int> calls_{0};
  Observer observer_;
};

TEST_F(RemovalWaitTest, RemovalWaitsForACallOnAnotherThread) {
  BusyObserver busy(kTooEarly);
  EXPECT_TRUE(busy.RemovalWaits());
}

TEST_F(RemovalWaitTest, SecondRemovalWaitsForACallOnAnotherThread) {
  BusyObserver busy(kTooEarly);
  {
    const NoWaitScope scope;
    busy.Remove();
    EXPECT_FALSE(busy.has_left());
  }
  EXPECT_TRUE(busy.RemovalWaits());
}

TEST_F(RemovalWaitTest, RemovalInsideADeliveryWaits) {
  BusyObserver busy(kTooEarly);
  bool waited = false;
  Observer remover([&] { waited = busy.RemovalWaits(); });
  Register({&remover}, kOtherName);
  Send(kOtherName);
  EXPECT_TRUE(waited);
}

// A host opens a dialog inside a notification. The dialog's loop removes observers that another
// thread is calling, and would destroy them next.
TEST_F(RemovalWaitTest, ModalLoopInsideADeliveryWaits) {
  constexpr int kRounds = 200;
  int removed_in_call = 0;
  Observer dialog([&] {
    for (int round = 0; round < kRounds; ++round) {
      BusyObserver busy;
      if (!busy.RemovalWaits()) ++removed_in_call;
    }
  });
  Register({&dialog}, kOtherName);
  Send(kOtherName);
  EXPECT_EQ(removed_in_call, 0);
}

TEST_F(RemovalWaitTest, DialogCanRemoveTheObserverThatOpenedIt) {
  bool removed = false;
  Observer opener([] { Send(kOtherName); });
  Observer dialog([&] {
    Center().RemoveObserver(&opener);
    Center().RemoveObserver(&dialog);
    removed = true;
  });
  Register({&opener});
  Register({&dialog}, kOtherName);
  Send();
  EXPECT_TRUE(removed);
}

TEST_F(RemovalWaitTest, NoWaitScopeKeepsOthersWaiting) {
  Event entered;
  Event removed;
  std::atomic<bool> left{false};
  Observer observer([&] {
    const NoWaitScope scope;
    entered.Set();
    removed.Wait(kTooEarly);
    left = true;
  });
  Register({&observer});
  std::thread sender([] { Send(); });
  EXPECT_TRUE(entered.Wait());
  Center().RemoveObserver(&observer);
  EXPECT_TRUE(left);
  removed.Set();
  sender.join();
}

// The first thread waits for the second. The second then begins to wait for the third.
TEST_F(RemovalWaitTest, WaitsForAThreadThatBeginsToWaitLater) {
  Event third_entered;
  Event second_entered;
  Event first_returned;
  std::atomic<bool> second_left{false};
  std::atomic<bool> returned_too_early{false};
  Removable third(kOtherName, [&] {
    third_entered.Set();
    third.WaitUntilRemoved();
    returned_too_early = first_returned.Wait(kTooEarly);
  });
  Removable second(kName, [&] {
    second_entered.Set();
    second.WaitUntilRemoved();
    Center().RemoveObserver(&third.observer());
    second_left = true;
  });
  std::thread third_thread([] { Send(kOtherName); });
  EXPECT_TRUE(third_entered.Wait());
  std::thread second_thread([] { Send(kName); });
  EXPECT_TRUE(second_entered.Wait());
  Center().RemoveObserver(&second.observer());
  EXPECT_TRUE(second_left);
  first_returned.Set();
  second_thread.join();
  third_thread.join();
  EXPECT_FALSE(returned_too_early);
}

// A call on one of two threads. Removes an observer while the other thread is in its call too.
struct Remover {
  void Run(Remover& other, Observer& victim) {
    inside.Set();
    EXPECT_TRUE(other.inside.Wait());
    Center().RemoveObserver(&victim);
    waited = other.left.load();
    left = true;
  }

  Event inside;
  std::atomic<bool> left{false};
  std::atomic<bool> waited{false};
};

// The thread that begins to wait last would close the circle.
TEST_F(RemovalWaitTest, OneOfTwoThreadsThatRemoveEachOtherWaits) {
  for (int round = 0; round < 3000; ++round) {
    Remover a;
    Remover b;
    std::unique_ptr<Observer> of_a;
    std::unique_ptr<Observer> of_b;
    of_a = std::make_unique<Observer>([&] { a.Run(b, *of_b); });
    of_b = std::make_unique<Observer>([&] { b.Run(a, *of_a); });
    Register({of_a.get()});
    Register({of_b.get()}, kOtherName);
    std::thread sender([] { Send(kName); });
    Send(kOtherName);
    sender.join();
    ASSERT_NE(a.waited, b.waited) << round;
  }
}

TEST_F(RemovalWaitTest, OneOfTwoCallsThatRemoveTheirObserverWaits) {
  for (int round = 0; round < 1000; ++round) {
    Remover a;
    Remover b;
    const auto first_thread = std::this_thread::get_id();
    Observer both([&] {
      const bool first = std::this_thread::get_id() == first_thread;
      first ? a.Run(b, both) : b.Run(a, both);
    });
    Register({&both});
    std::thread sender([] { Send(); });
    Send();
    sender.join();
    ASSERT_NE(a.waited, b.waited) << round;
  }
}

}  // namespace
}  // namespace stowra_test

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/notification_center.h"
#include "tests/platform/notify/notification_fixture.h"
#include "tests/support/event.h"

namespace stowra_test {
namespace {

// Has an observer that stays in OnNotification, on a second thread, until LetGo.
class BusyObserver {
 public:
  explicit BusyObserver(std::function<void()> then = nullptr)
      : observer_([this, then = std::move(then)] {
          entered_.Set();
          if (!let_go_.Wait()) ADD_FAILURE() << "LetGo was not called";
          if (then) then();
          left_ = true;
        }) {
    Center().AddObserver(kName, &observer_);
    sender_ = std::thread([] { Send(); });
    EXPECT_TRUE(entered_.Wait());
  }
  ~BusyObserver() {
    LetGo();
    sender_.join();
  }

  BusyObserver(const BusyObserver&) = delete;
  BusyObserver& operator=(const BusyObserver&) = delete;

  Observer& observer() { return observer_; }
  void LetGo() { let_go_.Set(); }
  bool has_left() const { return left_; }

 private:
  Event entered_;
  Event let_go_;
  std::atomic<bool> left_{false};
  Observer observer_;
  std::thread sender_;
};

// Lets the observer go and removes it. Returns whether the removal waited for the observer's call.
bool RemovalWaits(BusyObserver& busy, Event& removed) {
  busy.LetGo();
  Center().RemoveObserver(&busy.observer());
  const bool had_left = busy.has_left();
  removed.Set();
  return had_left;
}

TEST_F(NotificationCenterTest, RemovalWaitsForACallOnAnotherThread) {
  Event removed;
  BusyObserver busy([&] { removed.Wait(kTooEarly); });
  EXPECT_TRUE(RemovalWaits(busy, removed));
}

TEST_F(NotificationCenterTest, SecondRemovalWaitsForACallOnAnotherThread) {
  Event removed;
  BusyObserver busy([&] { removed.Wait(kTooEarly); });
  // The first removal is inside a delivery, so it does not wait.
  Observer inside([&] { Center().RemoveObserver(&busy.observer()); });
  Center().AddObserver(kOtherName, &inside);
  Send(kOtherName);
  EXPECT_FALSE(busy.has_left());
  EXPECT_TRUE(RemovalWaits(busy, removed));
}

// Each observer but the last sends to the next one, so all are being called on one thread.
TEST_F(NotificationCenterTest, RemovalWaitsForACallAmongNestedOnes) {
  constexpr std::size_t kDepth = 5;
  const auto name = [](std::size_t depth) { return std::string(kName) + std::to_string(depth); };
  for (std::size_t removed = 0; removed < kDepth; ++removed) {
    Event all_inside;
    Event let_go;
    Event returned;
    std::atomic<bool> left{false};
    std::vector<std::unique_ptr<Observer>> observers;
    for (std::size_t depth = 0; depth < kDepth; ++depth) {
      observers.push_back(std::make_unique<Observer>([&, depth] {
        if (depth + 1 < kDepth) {
          Send(name(depth + 1).c_str());
        } else {
          all_inside.Set();
          EXPECT_TRUE(let_go.Wait());
          returned.Wait(kTooEarly / 4);
        }
        if (depth == removed) left = true;
      }));
      Center().AddObserver(name(depth).c_str(), observers.back().get());
    }
    std::thread sender([&] { Send(name(0).c_str()); });
    EXPECT_TRUE(all_inside.Wait());
    let_go.Set();
    Center().RemoveObserver(observers[removed].get());
    EXPECT_TRUE(left) << removed;
    returned.Set();
    sender.join();
  }
}

TEST_F(NotificationCenterTest, CenterWorksDuringACallOnAnotherThread) {
  BusyObserver busy;
  const auto a = Logger('a');
  const auto b = Logger('b');
  Center().AddObserver(kOtherName, a.get());
  Center().AddObserver(kOtherName, b.get());
  Send(kOtherName);
  Center().RemoveObserver(a.get());
  Send(kOtherName);
  EXPECT_EQ(log_, "abb");
  EXPECT_FALSE(busy.has_left());
}

TEST_F(NotificationCenterTest, DoesNotCallAnObserverThatAnotherThreadAdded) {
  const auto late = Logger('l');
  {
    BusyObserver busy;
    Center().AddObserver(kName, late.get());
  }
  EXPECT_EQ(log_, "");
  Send();
  EXPECT_EQ(log_, "l");
}

TEST_F(NotificationCenterTest, DoesNotCallAnObserverThatAnotherThreadRemoved) {
  const auto victim = Logger('v');
  const auto last = Logger('l');
  Event added;
  Event removed;
  Observer first([&] {
    added.Set();
    EXPECT_TRUE(removed.Wait());
  });
  for (Observer* observer : {&first, victim.get(), last.get()}) {
    Center().AddObserver(kName, observer);
  }
  std::thread sender([] { Send(); });
  EXPECT_TRUE(added.Wait());
  Center().RemoveObserver(victim.get());
  removed.Set();
  sender.join();
  EXPECT_EQ(log_, "l");
}

TEST_F(NotificationCenterTest, RemovalInsideADeliveryDoesNotWait) {
  BusyObserver busy;
  bool still_busy = false;
  Observer remover([&] {
    Center().RemoveObserver(&busy.observer());
    still_busy = !busy.has_left();
  });
  Center().AddObserver(kOtherName, &remover);
  Send(kOtherName);
  EXPECT_TRUE(still_busy);
}

TEST_F(NotificationCenterTest, ObserversCanRemoveEachOtherAtOnce) {
  Event first_inside;
  Event second_inside;
  std::unique_ptr<Observer> first;
  std::unique_ptr<Observer> second;
  first = std::make_unique<Observer>([&] {
    first_inside.Set();
    EXPECT_TRUE(second_inside.Wait());
    Center().RemoveObserver(second.get());
  });
  second = std::make_unique<Observer>([&] {
    second_inside.Set();
    EXPECT_TRUE(first_inside.Wait());
    Center().RemoveObserver(first.get());
  });
  Center().AddObserver(kName, first.get());
  Center().AddObserver(kOtherName, second.get());
  Event first_ended;
  Event second_ended;
  std::thread first_sender([&] {
    Send(kName);
    first_ended.Set();
  });
  std::thread second_sender([&] {
    Send(kOtherName);
    second_ended.Set();
  });
  EXPECT_TRUE(first_ended.Wait());
  EXPECT_TRUE(second_ended.Wait());
  first_sender.join();
  second_sender.join();
}

TEST_F(NotificationCenterTest, NeverCallsARemovedObserver) {
  constexpr int kRounds = 2000;
  std::atomic<bool> stop{false};
  std::vector<std::thread> senders;
  for (const char* name : {kName, kOtherName}) {
    senders.emplace_back([&stop, name] {
      while (!stop) Send(name);
    });
  }
  std::atomic<int> calls_after_removal{0};
  std::vector<std::thread> owners;
  for (int i = 0; i < 3; ++i) {
    owners.emplace_back([&calls_after_removal] {
      for (int round = 0; round < kRounds; ++round) {
        // Not atomic, because RemoveObserver orders all accesses.
        bool removed = false;
        Observer observer([&] {
          if (removed) ++calls_after_removal;
        });
        Center().AddObserver(kName, &observer);
        Center().AddObserver(kOtherName, &observer);
        Send();
        Center().RemoveObserver(&observer);
        removed = true;
      }
    });
  }
  for (std::thread& owner : owners) owner.join();
  stop = true;
  for (std::thread& sender : senders) sender.join();
  EXPECT_EQ(calls_after_removal, 0);
}

TEST_F(NotificationCenterTest, DeliversAllNotificationsOfAllThreads) {
  constexpr int kSends = 1000;
  constexpr int kThreads = 4;
  std::atomic<int> calls{0};
  Observer observer([&] { ++calls; });
  Center().AddObserver(kName, &observer);
  std::vector<std::thread> senders;
  for (int i = 0; i < kThreads; ++i) {
    senders.emplace_back([] {
      for (int sent = 0; sent < kSends; ++sent) Send();
    });
  }
  for (std::thread& sender : senders) sender.join();
  EXPECT_EQ(calls, kSends * kThreads);
}

}  // namespace
}  // namespace stowra_test

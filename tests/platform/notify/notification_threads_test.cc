// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/notify/notification_fixture.h"
#include "tests/support/event.h"

namespace stowra_test {
namespace {

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
      Register({observers.back().get()}, name(depth).c_str());
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
  Register({&a_, &b_}, kOtherName);
  EXPECT_EQ(LogAfterSend(kOtherName), "ab");
  Center().RemoveObserver(&a_);
  EXPECT_EQ(LogAfterSend(kOtherName), "abb");
  EXPECT_FALSE(busy.has_left());
}

TEST_F(NotificationCenterTest, DoesNotCallAnObserverThatAnotherThreadAdded) {
  {
    BusyObserver busy;
    Register({&a_});
  }
  EXPECT_EQ(log_, "");
  EXPECT_EQ(LogAfterSend(), "a");
}

TEST_F(NotificationCenterTest, DoesNotCallAnObserverThatAnotherThreadRemoved) {
  Event added;
  Event removed;
  Observer first([&] {
    added.Set();
    EXPECT_TRUE(removed.Wait());
  });
  Register({&first, victim_.get(), &last_});
  std::thread sender([] { Send(); });
  EXPECT_TRUE(added.Wait());
  Center().RemoveObserver(victim_.get());
  removed.Set();
  sender.join();
  EXPECT_EQ(log_, "l");
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
        for (const char* name : {kName, kOtherName}) Register({&observer}, name);
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
  Register({&observer});
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

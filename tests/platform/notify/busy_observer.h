// SPDX-License-Identifier: MIT
// An observer that another thread is calling.

#ifndef TESTS_PLATFORM_NOTIFY_BUSY_OBSERVER_H_
#define TESTS_PLATFORM_NOTIFY_BUSY_OBSERVER_H_

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <utility>

#include "tests/platform/notify/notification_fixture.h"
#include "tests/support/event.h"

namespace stowra_test {

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
inline bool RemovalWaits(BusyObserver& busy, Event& removed) {
  busy.LetGo();
  Center().RemoveObserver(&busy.observer());
  const bool had_left = busy.has_left();
  removed.Set();
  return had_left;
}

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_NOTIFY_BUSY_OBSERVER_H_

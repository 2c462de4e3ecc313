// SPDX-License-Identifier: MIT
// Observers for the tests of the notification center.

#ifndef TESTS_PLATFORM_NOTIFY_NOTIFICATION_FIXTURE_H_
#define TESTS_PLATFORM_NOTIFY_NOTIFICATION_FIXTURE_H_

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"
#include "tests/support/event.h"

namespace stowra_test {

inline constexpr char kName[] = "NotificationCenterTestFirst";
inline constexpr char kOtherName[] = "NotificationCenterTestSecond";

// A removal that returns within this time did not wait.
inline constexpr std::chrono::milliseconds kTooEarly(100);

inline CNotificationCenter& Center() { return *CNotificationCenter::Default(); }

inline void Send(const char* name = kName) { Center().SendNotification(name, nullptr); }

// Runs a function for each notification.
class Observer final : public ovrant::IObserver {
 public:
  explicit Observer(std::function<void(const char*, void*)> function)
      : function_(std::move(function)) {}
  explicit Observer(std::function<void()> function)
      : function_([function = std::move(function)](const char*, void*) { function(); }) {}
  ~Observer() override { Center().RemoveObserver(this); }

  Observer(const Observer&) = delete;
  Observer& operator=(const Observer&) = delete;

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* name, void* payload) override { function_(name, payload); }

 private:
  const std::function<void(const char*, void*)> function_;
};

// In this order.
inline void Register(std::initializer_list<Observer*> observers, const char* name = kName) {
  for (Observer* observer : observers) Center().AddObserver(name, observer);
}

class NotificationCenterTest : public ::testing::Test {
 protected:
  // Appends `letter` to the log and calls `then`.
  std::function<void()> Logs(
      char letter, std::function<void()> then = [] {}) {
    return [this, letter, then = std::move(then)] {
      log_ += letter;
      then();
    };
  }

  std::string LogAfterSend(const char* name = kName) {
    Send(name);
    return log_;
  }

  std::string log_;
  Observer a_{Logs('a')};
  Observer b_{Logs('b')};
  Observer last_{Logs('l')};
  std::unique_ptr<Observer> victim_ = std::make_unique<Observer>(Logs('v'));
};

// An observer that stays in OnNotification, on a second thread, until LetGo.
// Then it stays until it was removed, for `more` at most.
class BusyObserver {
 public:
  explicit BusyObserver(std::chrono::milliseconds more = {})
      : observer_([this, more] {
          entered_.Set();
          if (!let_go_.Wait()) ADD_FAILURE() << "LetGo was not called";
          removed_.Wait(more);
          left_ = true;
        }) {
    Register({&observer_});
    sender_ = std::thread([] { Send(); });
    EXPECT_TRUE(entered_.Wait());
  }
  ~BusyObserver() {
    LetGo();
    sender_.join();
  }

  BusyObserver(const BusyObserver&) = delete;
  BusyObserver& operator=(const BusyObserver&) = delete;

  void LetGo() { let_go_.Set(); }
  bool has_left() const { return left_; }
  void Remove() { Center().RemoveObserver(&observer_); }

  // Lets the observer go and removes it. Returns whether the removal waited for
  // its call.
  bool RemovalWaits() {
    LetGo();
    Remove();
    const bool had_left = left_;
    removed_.Set();
    return had_left;
  }

 private:
  Event entered_;
  Event let_go_;
  Event removed_;
  std::atomic<bool> left_{false};
  Observer observer_;
  std::thread sender_;
};

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_NOTIFY_NOTIFICATION_FIXTURE_H_

// SPDX-License-Identifier: MIT
// Observers for the tests of the notification center.

#ifndef TESTS_PLATFORM_NOTIFY_NOTIFICATION_FIXTURE_H_
#define TESTS_PLATFORM_NOTIFY_NOTIFICATION_FIXTURE_H_

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"

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

class NotificationCenterTest : public ::testing::Test {
 protected:
  // An observer that appends `letter` to the log.
  std::unique_ptr<Observer> Logger(char letter) {
    return std::make_unique<Observer>([this, letter] { log_ += letter; });
  }

  std::string log_;
};

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_NOTIFY_NOTIFICATION_FIXTURE_H_

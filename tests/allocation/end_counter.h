// SPDX-License-Identifier: MIT
// An observer that counts its notifications and allocates nothing when called.

#ifndef TESTS_ALLOCATION_END_COUNTER_H_
#define TESTS_ALLOCATION_END_COUNTER_H_

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <mutex>

#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"
#include "tests/support/event.h"

namespace stowra_test {

// Observes the default center from construction to destruction. Safe from any thread.
class EndCounter final : public ovrant::IObserver {
 public:
  EndCounter(const char* success, const char* failure) : success_(success) {
    CNotificationCenter::Default()->AddObserver(success, this);
    CNotificationCenter::Default()->AddObserver(failure, this);
  }
  ~EndCounter() override { CNotificationCenter::Default()->RemoveObserver(this); }

  EndCounter(const EndCounter&) = delete;
  EndCounter& operator=(const EndCounter&) = delete;

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* name, void* /*payload*/) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++(std::strcmp(name, success_) == 0 ? successes_ : failures_);
    changed_.notify_all();
  }

  // Waits for at least `count` notifications. False after kPatience.
  bool WaitFor(int count) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, kPatience,
                             [this, count] { return successes_ + failures_ >= count; });
  }

  const char* success() const { return success_; }
  int count() { return successes() + failures(); }
  int successes() { return successes_; }
  int failures() { return failures_; }

 private:
  const char* const success_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::atomic<int> successes_{0};
  std::atomic<int> failures_{0};
};

}  // namespace stowra_test

#endif  // TESTS_ALLOCATION_END_COUNTER_H_

// SPDX-License-Identifier: MIT
// An observer that records its notifications.

#ifndef TESTS_SUPPORT_NOTIFICATION_RECORDER_H_
#define TESTS_SUPPORT_NOTIFICATION_RECORDER_H_

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"
#include "tests/support/event.h"

namespace stowra_test {

// Observes the default center from construction to destruction. Safe from any thread.
class NotificationRecorder final : public ovrant::IObserver {
 public:
  struct Entry {
    std::string name;
    void* payload;
    std::thread::id thread;
  };

  // `on_notification`, if given, runs in each delivery before the entry is recorded.
  explicit NotificationRecorder(std::initializer_list<const char*> names,
                                std::function<void()> on_notification = nullptr)
      : on_notification_(std::move(on_notification)) {
    for (const char* name : names) CNotificationCenter::Default()->AddObserver(name, this);
  }
  ~NotificationRecorder() override { CNotificationCenter::Default()->RemoveObserver(this); }

  NotificationRecorder(const NotificationRecorder&) = delete;
  NotificationRecorder& operator=(const NotificationRecorder&) = delete;

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* name, void* payload) override {
    if (on_notification_) on_notification_();
    const std::lock_guard<std::mutex> lock(mutex_);
    entries_.push_back({name, payload, std::this_thread::get_id()});
    changed_.notify_all();
  }

  // Waits for at least `count` notifications. False after kPatience.
  bool WaitFor(std::size_t count) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, kPatience, [this, count] { return entries_.size() >= count; });
  }

  std::vector<Entry> entries() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return entries_;
  }
  std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const Entry& entry : entries()) names.push_back(entry.name);
    return names;
  }

 private:
  const std::function<void()> on_notification_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Entry> entries_;
};

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_NOTIFICATION_RECORDER_H_

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
#include <vector>

#include "common_stowraapi/platform/observer.h"

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
                                std::function<void()> on_notification = nullptr);
  ~NotificationRecorder() override;

  NotificationRecorder(const NotificationRecorder&) = delete;
  NotificationRecorder& operator=(const NotificationRecorder&) = delete;

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* name, void* payload) override;

  // Waits for at least `count` notifications. False after kPatience.
  bool WaitFor(std::size_t count);

  std::vector<Entry> entries();
  std::vector<std::string> names();

 private:
  const std::function<void()> on_notification_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Entry> entries_;
};

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_NOTIFICATION_RECORDER_H_

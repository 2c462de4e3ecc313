// An observer that remembers what it is told.

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

// Registered at the default center from its construction to its destruction. Safe from any thread.
class NotificationRecorder final : public ovrant::IObserver {
 public:
  struct Entry {
    std::string name;
    void* payload;
    std::thread::id thread;
  };

  // `on_notification`, if given, runs inside each delivery, before that is recorded.
  explicit NotificationRecorder(std::initializer_list<const char*> names,
                                std::function<void()> on_notification = nullptr);
  ~NotificationRecorder() override;

  NotificationRecorder(const NotificationRecorder&) = delete;
  NotificationRecorder& operator=(const NotificationRecorder&) = delete;

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* name, void* payload) override;

  // Whether at least `count` have come within kPatience.
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

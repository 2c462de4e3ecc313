// SPDX-License-Identifier: MIT
// Waits for another thread.

#ifndef TESTS_SUPPORT_EVENT_H_
#define TESTS_SUPPORT_EVENT_H_

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace stowra_test {

// How long a test waits for something that should happen at once. Only a fault takes this long.
// Less than the transport's own timeout for a silent server.
inline constexpr std::chrono::seconds kPatience(20);

// Something that happens once. Safe from any thread.
class Event {
 public:
  void Set() {
    const std::lock_guard<std::mutex> lock(mutex_);
    is_set_ = true;
    changed_.notify_all();
  }

  // Waits for Set. False after `limit`.
  bool Wait(std::chrono::milliseconds limit = kPatience) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, limit, [this] { return is_set_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool is_set_ = false;
};

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_EVENT_H_

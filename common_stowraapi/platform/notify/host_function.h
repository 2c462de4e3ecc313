// A function that the host has set and may replace at any moment.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFY_HOST_FUNCTION_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFY_HOST_FUNCTION_H_

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "common_stowraapi/platform/notify/delivery_gate.h"
#include "common_stowraapi/platform/notify/delivery_scope.h"

namespace ovrant::internet {

// One function as the host set it.
template <typename... Args>
class SetFunction {
 public:
  explicit SetFunction(std::function<void(Args...)> function) : function_(std::move(function)) {}

  // False when the function has been replaced: it was not called, and the arguments are untouched.
  // What it throws goes no further.
  bool Call(Args&&... args) {
    if (!gate_.Enter()) return false;
    try {
      const DeliveryScope scope;
      function_(std::forward<Args>(args)...);
    } catch (
        ...) {  // NOLINT(bugprone-empty-catch): the host's own failure, which is not the transfer's
    }
    gate_.Leave();
    return true;
  }

  // On return no other thread is inside the function, and it has been destroyed: its code may be
  // unloaded. Inside a delivery, where nobody waits, it goes with the last transfer that knows it.
  void Close() {
    gate_.Close();
    if (!DeliveryScope::IsInside()) function_ = nullptr;
  }

 private:
  std::function<void(Args...)> function_;
  DeliveryGate gate_;
};

// The place where it is set. Safe from any thread.
template <typename... Args>
class HostFunction {
 public:
  using Set = SetFunction<Args...>;

  // On return the function before is not running on another thread and has been destroyed, unless
  // this is called inside a delivery.
  void Replace(std::function<void(Args...)> function) {
    auto next = function ? std::make_shared<Set>(std::move(function)) : nullptr;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      current_.swap(next);
      is_set_ = current_ != nullptr;
    }
    if (next) next->Close();
  }

  // Null when none is set.
  std::shared_ptr<Set> Current() const {
    if (!is_set_) return nullptr;
    const std::lock_guard<std::mutex> lock(mutex_);
    return current_;
  }

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<Set> current_;
  std::atomic<bool> is_set_{false};
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFY_HOST_FUNCTION_H_

// SPDX-License-Identifier: MIT
// A function that the host sets and may replace at any time.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFY_HOST_FUNCTION_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFY_HOST_FUNCTION_H_

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "common_stowraapi/platform/notify/delivery_gate.h"

namespace ovrant {

// One function that the host has set.
template <typename... Args>
class SetFunction {
 public:
  explicit SetFunction(std::function<void(Args...)> function) : function_(std::move(function)) {}

  // Calls the function and swallows its exceptions. Returns false if the function has been
  // replaced. Then nothing was called, and the arguments are unchanged.
  bool Call(Args&&... args) {
    const DeliveryGate::Call call(gate_);
    if (!call.has_entered()) return false;
    try {
      function_(std::forward<Args>(args)...);
    } catch (...) {  // NOLINT(bugprone-empty-catch): must not fail the transfer
    }
    return true;
  }

  // Closes the gate, then destroys the function, so its code may be unloaded. If a call is still
  // inside, the last owner of this object destroys the function.
  void Close() {
    if (gate_.Close()) function_ = nullptr;
  }

 private:
  std::function<void(Args...)> function_;
  DeliveryGate gate_;
};

// Holds what is set now: a SetFunction or a class made from it. Safe from any thread.
template <typename Set>
class HostFunctionPlace {
 public:
  // Sets `next`, or none if it is null, and closes the old one.
  void Replace(std::shared_ptr<Set> next) {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      current_.swap(next);
    }
    if (next) next->Close();
  }

  // Null if none is set.
  std::shared_ptr<Set> Current() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return current_;
  }

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<Set> current_;
};

// The same for a plain function.
template <typename... Args>
class HostFunction : public HostFunctionPlace<SetFunction<Args...>> {
 public:
  using Set = SetFunction<Args...>;

  // Sets `function`, or none if it is empty, and closes the old one. Throws std::bad_alloc if
  // memory runs out, and then the old function stays.
  void Replace(std::function<void(Args...)> function) {
    HostFunctionPlace<Set>::Replace(function ? std::make_shared<Set>(std::move(function))
                                             : nullptr);
  }
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFY_HOST_FUNCTION_H_

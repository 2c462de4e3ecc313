// SPDX-License-Identifier: MIT
// Lets an object stop callbacks into itself and wait for those that are running.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_GATE_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_GATE_H_

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>

#include "common_stowraapi/platform/notify/delivery.h"

namespace ovrant {

// Guards the calls of host code that are made for one object. The object's destructor calls Close.
// Safe from any thread.
class DeliveryGate {
 public:
  // A call through the gate. Lives on the stack around the call.
  class Call {
   public:
    // Enters unless the gate is closed. Runs `first`, if given, just before it enters. Every Close
    // waits for `first`, also one that does not wait for calls. An exception from it passes
    // through.
    explicit Call(DeliveryGate& gate, const std::function<void()>& first = nullptr);

    bool has_entered() const { return delivery_.has_value(); }

   private:
    std::unique_lock<std::mutex> lock_;
    std::optional<Delivery> delivery_;
  };

  // Closes the gate for good and waits as Delivery::WaitForOthers does. True if no call is inside.
  bool Close();

  bool IsClosed() const { return closed_; }

 private:
  std::mutex mutex_;                 // held while `first` runs
  std::atomic<bool> closed_{false};  // set under the mutex
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_GATE_H_

// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/notify/delivery_gate.h"

namespace ovrant {

DeliveryGate::Call::Call(DeliveryGate& gate, const std::function<void()>& first) {
  const std::lock_guard<std::mutex> open(gate.mutex_);
  if (gate.closed_) return;
  if (first) first();
  lock_ = Delivery::Lock();
  delivery_.emplace(&gate, lock_);
}

bool DeliveryGate::Close() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    closed_ = true;
  }
  auto lock = Delivery::Lock();
  return Delivery::WaitForOthers(this, lock);
}

}  // namespace ovrant

#include "common_stowraapi/platform/notify/delivery_gate.h"

#include "common_stowraapi/platform/notify/delivery_scope.h"

namespace ovrant {

bool DeliveryGate::Enter(const std::function<void()>& first) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (closed_) return false;
  if (first) first();
  ++inside_;
  return true;
}

void DeliveryGate::Leave() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (--inside_ == 0) all_left_.notify_all();
}

void DeliveryGate::Close() {
  std::unique_lock<std::mutex> lock(mutex_);
  closed_ = true;
  if (DeliveryScope::IsInside()) return;
  all_left_.wait(lock, [this] { return inside_ == 0; });
}

}  // namespace ovrant

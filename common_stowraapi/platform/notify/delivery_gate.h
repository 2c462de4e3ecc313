// The end of somebody's wish to be called.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_GATE_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_GATE_H_

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace ovrant::internet {

// Stands between a thread that calls host code on behalf of an object and the thread that ends that
// object. Calls are made between Enter and Leave; after Close there are no more of them. Safe from
// any thread.
class DeliveryGate {
 public:
  // True when the gate is open: Leave must follow. `first` is run then, with the gate's lock held,
  // so that Close never returns in the middle of it.
  bool Enter(const std::function<void()>& first = nullptr);
  void Leave();

  // Shuts the gate for good, then waits for the calls that are inside; inside a delivery
  // (DeliveryScope) it does not wait. Closing twice is harmless.
  void Close();

  bool IsClosed() const { return closed_; }

 private:
  std::mutex mutex_;
  std::condition_variable all_left_;
  std::atomic<bool> closed_{false};  // set under the lock
  int inside_ = 0;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_GATE_H_

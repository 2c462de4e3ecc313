// Lets an object stop callbacks into itself and wait for those that are running.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_GATE_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_GATE_H_

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace ovrant {

// Guards the calls of host code that are made for one object. A caller makes each call between
// Enter and Leave. The object's destructor calls Close. Safe from any thread.
class DeliveryGate {
 public:
  // Returns false if the gate is closed. Otherwise runs `first`, if given, and returns true. Leave
  // must follow then. `first` runs under the gate's lock, so even a Close that does not wait for
  // calls waits for it. An exception from it passes through, and Leave must not follow.
  bool Enter(const std::function<void()>& first = nullptr);
  void Leave();

  // Closes the gate for good and waits for the calls that are running. Does not wait for them
  // inside a DeliveryScope. May be called again.
  void Close();

  bool IsClosed() const { return closed_; }

 private:
  std::mutex mutex_;
  std::condition_variable all_left_;
  std::atomic<bool> closed_{false};  // set under the mutex
  int inside_ = 0;
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_GATE_H_

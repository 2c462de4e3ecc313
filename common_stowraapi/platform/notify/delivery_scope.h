// Tells whether the current thread is inside a call of host code.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_SCOPE_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_SCOPE_H_

namespace ovrant {

// Lives on the stack around each call of host code. Inside one, removals and destructors do not
// wait for calls on other threads. So two threads never wait for each other.
class DeliveryScope {
 public:
  DeliveryScope();
  ~DeliveryScope();

  DeliveryScope(const DeliveryScope&) = delete;
  DeliveryScope& operator=(const DeliveryScope&) = delete;

  // True if the calling thread has a scope.
  static bool IsInside();

 private:
  int& depth_;  // the thread's own
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_SCOPE_H_

// Whether the current thread is inside a delivery to the host.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_SCOPE_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_SCOPE_H_

namespace ovrant {

// Lives on the stack around each call of host code. What would otherwise wait for calls under way
// on other threads does not wait inside one, so that two threads never wait for each other.
class DeliveryScope {
 public:
  DeliveryScope();
  ~DeliveryScope();

  DeliveryScope(const DeliveryScope&) = delete;
  DeliveryScope& operator=(const DeliveryScope&) = delete;

  // Whether the calling thread is inside a scope.
  static bool IsInside();

 private:
  int& depth_;  // the thread's own
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_SCOPE_H_

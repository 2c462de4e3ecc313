// SPDX-License-Identifier: MIT
// Catches, in debug builds, calls that a host must not make while an object is being notified.

#ifndef COMMON_STOWRAAPI_REQUEST_DELIVERY_CHECK_H_
#define COMMON_STOWRAAPI_REQUEST_DELIVERY_CHECK_H_

namespace ovrant {

// Lives on the stack while an object handles a notification. Never touches the object. Does nothing
// in release builds.
class DeliveryCheck {
 public:
#ifdef NDEBUG
  explicit DeliveryCheck(const void* /*object*/) {}

  static void ExpectOutside(const void* /*object*/, const char* /*what*/) {}
#else
  explicit DeliveryCheck(const void* object);
  ~DeliveryCheck();

  DeliveryCheck(const DeliveryCheck&) = delete;
  DeliveryCheck& operator=(const DeliveryCheck&) = delete;

  // Aborts, printing `what` the host did, if this thread is inside a notification of `object`.
  static void ExpectOutside(const void* object, const char* what);

 private:
  const void* const object_;
  const DeliveryCheck* const outer_;
#endif
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_REQUEST_DELIVERY_CHECK_H_

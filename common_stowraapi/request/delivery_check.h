// In debug builds, catches what a host must not do to an object while it is being notified.

#ifndef COMMON_STOWRAAPI_REQUEST_DELIVERY_CHECK_H_
#define COMMON_STOWRAAPI_REQUEST_DELIVERY_CHECK_H_

namespace ovrant {

// Lives on the stack while an object handles a notification, and never touches the object. In
// release builds neither it nor its check does anything.
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

  // Aborts, naming `what` was done, when this thread is inside a notification of `object`.
  static void ExpectOutside(const void* object, const char* what);

 private:
  const void* const object_;
  const DeliveryCheck* const outer_;
#endif
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_REQUEST_DELIVERY_CHECK_H_

// SPDX-License-Identifier: MIT
// The completion object of background transfers.

#ifndef COMMON_STOWRAAPI_PLATFORM_INTERNET_DATA_DELEGATE_H_
#define COMMON_STOWRAAPI_PLATFORM_INTERNET_DATA_DELEGATE_H_

#include <memory>

#include "common_stowraapi/export.h"

namespace ovrant {
class DeliveryGate;
}  // namespace ovrant

namespace ovrant::internet {

// Names the notifications for the end of a background transfer. For each transfer that is not
// dropped, exactly one of the two names is posted through CNotificationCenter::Default(). The
// payload is the context pointer. SetCompletionExecutor of InternetData decides on which thread.
//
// The caller owns the delegate and may delete it at any moment of the transfer. The transport may
// go before it or after it, and the notification that it posts may delete it. The destructor gives
// the same guarantee as that of InternetData.
//
// One delegate may serve several transfers. The accessors may be called from any thread.
class STOWRA_EXPORT InternetDataDelegate {
 public:
  // Both names must outlive the delegate. A transfer copies them when it starts. A null name counts
  // as the empty one.
  // `context` may be null and is never dereferenced. The message numbers are kept for the host.
  // Throws std::bad_alloc when memory runs out.
  InternetDataDelegate(void* context, unsigned int returned_message,
                       const char* returned_notification, unsigned int failed_message,
                       const char* failed_notification);
  virtual ~InternetDataDelegate();

  InternetDataDelegate(const InternetDataDelegate&) = delete;
  InternetDataDelegate& operator=(const InternetDataDelegate&) = delete;

  void* context() const { return context_; }
  unsigned int returned_message() const { return returned_message_; }
  const char* returned_notification() const { return returned_notification_; }
  unsigned int failed_message() const { return failed_message_; }
  const char* failed_notification() const { return failed_notification_; }

 private:
  friend class InternetData;

  void* const context_;
  const unsigned int returned_message_;
  const char* const returned_notification_;
  const unsigned int failed_message_;
  const char* const failed_notification_;

  // Closed by the destructor. Shared with the transfers that post these names.
  const std::shared_ptr<DeliveryGate> gate_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_INTERNET_DATA_DELEGATE_H_

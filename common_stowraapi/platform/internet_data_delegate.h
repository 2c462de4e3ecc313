// The completion object of background transfers.

#ifndef COMMON_STOWRAAPI_PLATFORM_INTERNET_DATA_DELEGATE_H_
#define COMMON_STOWRAAPI_PLATFORM_INTERNET_DATA_DELEGATE_H_

#include <memory>

#include "common_stowraapi/export.h"

namespace ovrant::internet {

class DeliveryGate;

// Says under which names the end of a background transfer is posted through
// CNotificationCenter::Default(). For each transfer that is kept, exactly one of the two names is
// posted, on the thread that runs completions (see InternetData::SetCompletionExecutor), with the
// context pointer as payload.
//
// Owned by the caller, who may delete it at any moment of the transfer, before or after the
// transport, and from inside the notification that it posts. Once its destructor has returned
// nothing more is posted; a post under way on another thread has ended by then, unless the
// destructor runs inside a delivery: then it does not wait. The destructor never waits for the
// network.
class STOWRA_EXPORT InternetDataDelegate {
 public:
  // The names must be valid as long as the delegate; a transfer takes copies of its own when it
  // starts. The context pointer is handed on and never dereferenced; the message numbers are kept
  // for the host.
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

  // Closed by the destructor; shared with the transfers that are to post under these names.
  const std::shared_ptr<DeliveryGate> gate_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_INTERNET_DATA_DELEGATE_H_

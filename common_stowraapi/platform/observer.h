// Receivers of notifications.

#ifndef COMMON_STOWRAAPI_PLATFORM_OBSERVER_H_
#define COMMON_STOWRAAPI_PLATFORM_OBSERVER_H_

#include "common_stowraapi/export.h"

namespace ovrant {

// A payload that only the host knows how to read.
class Dictionary;

// Receives the notifications for which CNotificationCenter::AddObserver registered it. The center
// does not own it: remove it there before it is destroyed. The order of the virtual functions is
// part of the binary interface.
class STOWRA_EXPORT IObserver {
 public:
  virtual ~IObserver() = default;

  // Called on the thread that sends. `name` is to be compared by content; both arguments are the
  // sender's and valid for the call. May add and remove observers, itself included, and send.
  virtual void OnNotification(const char* name, void* payload) = 0;

  // The same with a dictionary, whose address becomes the payload.
  virtual void OnNotification(const char* name, const Dictionary& payload) {
    OnNotification(name, const_cast<void*>(static_cast<const void*>(&payload)));
  }
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_OBSERVER_H_

// SPDX-License-Identifier: MIT
// The interface of observers of notifications.

#ifndef COMMON_STOWRAAPI_PLATFORM_OBSERVER_H_
#define COMMON_STOWRAAPI_PLATFORM_OBSERVER_H_

#include "common_stowraapi/export.h"

namespace ovrant {

// A payload that only the host can read.
class Dictionary;

// Receives notifications once CNotificationCenter::AddObserver has registered it. The center does
// not own it. Call RemoveObserver before or in its destructor. The order of the virtual functions
// is part of the binary interface.
class STOWRA_EXPORT IObserver {
 public:
  virtual ~IObserver() = default;

  // Runs on the thread that sends. Several threads may call it at once. Compare `name` by content,
  // not by address. `name` is never null, and `payload` may be null. The sender owns both, so keep
  // neither. The function may add, remove and delete observers, itself included, and may send.
  virtual void OnNotification(const char* name, void* payload) = 0;

  // Passes the dictionary's address on as the payload.
  virtual void OnNotification(const char* name, const Dictionary& payload) {
    OnNotification(name, const_cast<void*>(static_cast<const void*>(&payload)));
  }
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_OBSERVER_H_

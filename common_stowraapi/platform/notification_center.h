// Named notifications from any part of the process to any other.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFICATION_CENTER_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFICATION_CENTER_H_

#include <memory>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/observer.h"

namespace ovrant {
class NotificationRegistry;
}  // namespace ovrant

// Maps names, matched by content, to observers, which it does not own. Safe from any thread, and
// from inside OnNotification; holds no lock while it calls an observer.
class STOWRA_EXPORT CNotificationCenter {
 public:
  // The one center of the process. Never null and never destroyed, so that it also serves static
  // destructors.
  static CNotificationCenter* Default();

  CNotificationCenter(const CNotificationCenter&) = delete;
  CNotificationCenter& operator=(const CNotificationCenter&) = delete;

  // Registers `observer` for `name`; a second time has no effect, and null arguments have none. A
  // delivery of that name that is under way does not call it. std::bad_alloc leaves the center as
  // it was.
  void AddObserver(const char* name, ovrant::IObserver* observer);

  // Removes `observer` from every name; safe if it has none. On return it is not called again, and
  // a call under way on another thread has ended. From inside a delivery the call does not wait for
  // that other thread, so that two threads never wait for each other.
  void RemoveObserver(ovrant::IObserver* observer);

  // Calls OnNotification(name, payload) on this thread for each observer of `name`, in order of
  // registration. An exception that an observer throws passes through; the observers after it are
  // not called.
  void SendNotification(const char* name, void* payload);

 private:
  CNotificationCenter();
  ~CNotificationCenter();

  const std::unique_ptr<ovrant::NotificationRegistry> registry_;
};

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFICATION_CENTER_H_

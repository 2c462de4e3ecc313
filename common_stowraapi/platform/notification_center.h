// SPDX-License-Identifier: MIT
// Sends named notifications within the process.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFICATION_CENTER_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFICATION_CENTER_H_

#include <memory>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/observer.h"

namespace ovrant {
class NotificationRegistry;
}  // namespace ovrant

// Sends notifications to the observers that are registered for their names. Owns no observer and
// compares names by content. Every function is safe from any thread and from inside OnNotification.
// No lock is held while an observer is called. Sending and removing need no memory.
class STOWRA_EXPORT CNotificationCenter {
 public:
  // The only center of the process, never null. It is never destroyed, so static destructors may
  // use it. The first call throws std::bad_alloc if memory runs out.
  static CNotificationCenter* Default();

  CNotificationCenter(const CNotificationCenter&) = delete;
  CNotificationCenter& operator=(const CNotificationCenter&) = delete;

  // Registers `observer` for `name`, which is copied. Does nothing if the pair is registered
  // already or if an argument is null. Deliveries that have begun do not call the observer. Throws
  // std::bad_alloc if memory runs out, and then the center is unchanged.
  void AddObserver(const char* name, ovrant::IObserver* observer);

  // Removes `observer` from every name. Does nothing if it has none or is null. On return it is not
  // called again, and calls to it on other threads have ended. So hold no lock that the observer
  // takes.
  //
  // The function waits inside OnNotification too. It does not wait in these cases:
  //   - The call runs on its own thread.
  //   - The call runs on a thread that already waits here, in a destructor of InternetData or
  //     InternetDataDelegate, or for a listener or executor that it replaces. Two threads that
  //     remove each other's observers would otherwise wait forever.
  //   - The function runs on the library's worker thread, which never waits.
  void RemoveObserver(ovrant::IObserver* observer);

  // Calls OnNotification(name, payload) on this thread for each observer of `name`, in order of
  // registration. `name` must stay valid until the function returns. A null name does nothing. If
  // an observer throws, the exception passes through and the later observers are not called.
  void SendNotification(const char* name, void* payload);

 private:
  CNotificationCenter();
  ~CNotificationCenter();

  const std::unique_ptr<ovrant::NotificationRegistry> registry_;
};

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFICATION_CENTER_H_

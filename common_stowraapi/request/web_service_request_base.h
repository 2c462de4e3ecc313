// SPDX-License-Identifier: MIT
// The base of the web service requests.

#ifndef COMMON_STOWRAAPI_REQUEST_WEB_SERVICE_REQUEST_BASE_H_
#define COMMON_STOWRAAPI_REQUEST_WEB_SERVICE_REQUEST_BASE_H_

#include <memory>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/observer.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {
class InternetData;
class InternetDataDelegate;
}  // namespace ovrant::internet

namespace ovrant::webservices {

// Runs one HTTP GET of one URL, on the calling thread or in the background. Hands the body of a
// response with status 200 to ParseResponse and ends in exactly one of four hooks. Running out of
// memory is a failure like any other, and the object may be used on.
//
// An object observes the end of its background transfers under two notification names of its class.
// Every object of the class hears them. It takes any failure for its own, and any return while it
// has a transport. A host therefore keeps one object of a class in flight at a time.
//
// Owns its transport and delegate from AsynchronousRequest until the next one, CleanUpRequest or
// destruction.
//
// Threads: one at a time. The asynchronous hooks run on the thread that posts the transfer's end
// (see InternetData::SetCompletionExecutor). Hooks, and observers of what they post, must not call
// AsynchronousRequest, CleanUpRequest or the destructor of the object whose notification is being
// delivered. A debug build of this library aborts with a message if they do. At any other moment
// the object may be destroyed, and no hook runs after that.
//
// Exceptions: only the constructor of a concrete class, Init and AddNotifications throw
// std::bad_alloc. An exception from a hook, or from an observer of what it posts, goes to one
// place:
//   - SynchronousRequest and OnNotification pass it to their caller.
//   - AsynchronousRequest passes it on if there is no memory to make the transport.
//   - The transport swallows it if it posts on its own thread or cannot start the transfer.
//   - A completion that the host's executor runs passes it to its caller.
// No hook runs a second time after that. A std::bad_alloc from ParseResponse counts as false.
//
// The order of the virtual functions and of the members is part of the binary interface.
class STOWRA_EXPORT WebServiceRequestBase : public IObserver {
 public:
  // Leaves the message numbers and notification names unset. The constructor of a concrete class
  // sets all four and then calls AddNotifications; its destructor first calls RemoveNotifications.
  WebServiceRequestBase();
  ~WebServiceRequestBase() override;

  WebServiceRequestBase(const WebServiceRequestBase&) = delete;
  WebServiceRequestBase& operator=(const WebServiceRequestBase&) = delete;

  // Handles the end of this object's background transfer. Ignores any other name and the payload.
  // `name` must not be null.
  void OnNotification(const char* name, void* payload) override;
  using IObserver::OnNotification;

  // Sets the URL of later requests, and the context that their delegates pass on and never
  // dereference. A transfer in flight goes on with its old URL and context. std::bad_alloc changes
  // nothing.
  virtual void Init(const ovrant::utils::ovrant_ustring& url, void* context);

  // Reads the results from `body`, which may be empty. False if it cannot use them; each class says
  // what it then holds. The base returns false.
  virtual bool ParseResponse(const ovrant::utils::ovrant_ustring& body);

  // The outcome of a request. The base does nothing.
  virtual void OnSyncResponseSuccess();
  virtual void OnSyncResponseFail();
  virtual void OnAsyncResponseSuccess();
  virtual void OnAsyncResponseFail();

  // GETs the URL on this thread. True, after OnSyncResponseSuccess, for a response with status 200
  // and a body that ParseResponse accepts. False, after OnSyncResponseFail, for an empty URL, a
  // failed transfer, any other status or any other body. A background transfer goes on beside it.
  bool SynchronousRequest();

  // Drops the background transfer, if any, and starts another. Returns at once.
  // OnAsyncResponseSuccess or OnAsyncResponseFail follows. Without memory or a thread to start the
  // transfer, the latter runs before this returns, on this thread. Neither runs once the process
  // exits. With an empty URL it does nothing at all.
  void AsynchronousRequest();

  // Start and stop observing both notification names at CNotificationCenter::Default().
  void AddNotifications();
  void RemoveNotifications();

  // Deletes the delegate, then the transport. A running transfer is dropped, and no hook runs.
  void CleanUpRequest();

 protected:
  void* context_ = nullptr;
  unsigned int returned_message_;
  unsigned int failed_message_;
  ovrant::utils::ovrant_ustring url_;
  std::unique_ptr<ovrant::internet::InternetData> internet_data_;
  std::unique_ptr<ovrant::internet::InternetDataDelegate> delegate_;
  const char* returned_notification_;
  const char* failed_notification_;
};

}  // namespace ovrant::webservices

#endif  // COMMON_STOWRAAPI_REQUEST_WEB_SERVICE_REQUEST_BASE_H_

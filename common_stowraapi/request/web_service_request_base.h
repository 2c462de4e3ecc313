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

// Runs one HTTP GET of one URL, on the calling thread or in the background, hands the body of a
// response with status 200 to ParseResponse, and ends in exactly one of four hooks. It observes the
// end of its own background transfers under two names that are its class's alone; a second object
// of the same class hears them too, takes a failure for its own, and a return while it has a
// transport, so a host keeps one object of a class in flight at a time.
//
// Owns its transport and delegate from AsynchronousRequest until the next one, CleanUpRequest or
// destruction.
//
// For one thread at a time. The asynchronous hooks run on the thread that posts the transfer's end
// (see InternetData::SetCompletionExecutor); AsynchronousRequest, CleanUpRequest and the destructor
// must not be called while a notification for the same object is being delivered, by its hooks and
// by observers of what they post; a debug build of this library aborts with a message then.
// Otherwise it may be destroyed at any moment, also by an observer of what another object posts,
// and no hook runs after that.
//
// A request that runs out of memory has failed: that is what the hooks say, and nothing throws but
// what a hook throws. The object may be used on.
//
// The order of the virtual functions and of the members is part of the binary interface.
class STOWRA_EXPORT WebServiceRequestBase : public IObserver {
 public:
  // Leaves the message numbers and notification names unset: the constructor of each concrete class
  // sets all four and then calls AddNotifications. Its destructor first calls RemoveNotifications.
  WebServiceRequestBase();
  ~WebServiceRequestBase() override;

  WebServiceRequestBase(const WebServiceRequestBase&) = delete;
  WebServiceRequestBase& operator=(const WebServiceRequestBase&) = delete;

  // Handles the end of this object's background transfer, by name; any other name is ignored.
  void OnNotification(const char* name, void* payload) override;
  using IObserver::OnNotification;

  // Sets the URL to request and the context to hand to the transfer's delegate, which is never
  // dereferenced.
  virtual void Init(const ovrant::utils::ovrant_ustring& url, void* context);

  // Reads the results from `body`, which may be empty. False when they cannot be used; each class
  // says what it holds then. The base's refuses every body.
  virtual bool ParseResponse(const ovrant::utils::ovrant_ustring& body);

  // The outcome of a request; the base's do nothing.
  virtual void OnSyncResponseSuccess();
  virtual void OnSyncResponseFail();
  virtual void OnAsyncResponseSuccess();
  virtual void OnAsyncResponseFail();

  // GETs the URL on this thread. True, after OnSyncResponseSuccess, when the response had status
  // 200 and ParseResponse took its body. False, after OnSyncResponseFail, for an empty URL, a
  // failed transfer, any other status, or a body that ParseResponse refused. A background transfer
  // goes on beside it.
  bool SynchronousRequest();

  // Drops the background transfer, if any, and starts another. Returns at once;
  // OnAsyncResponseSuccess or OnAsyncResponseFail follows; the latter at once, on this thread, when
  // there is no memory for the transfer. With an empty URL it does nothing at all.
  void AsynchronousRequest();

  // Observes both notification names through CNotificationCenter::Default(); stops observing.
  void AddNotifications();
  void RemoveNotifications();

  // Deletes the delegate, then the transport: a transfer still running is dropped without a hook.
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

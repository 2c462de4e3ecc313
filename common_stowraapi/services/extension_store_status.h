// SPDX-License-Identifier: MIT
// Asks the extension store for the status of the installed extensions.

#ifndef COMMON_STOWRAAPI_SERVICES_EXTENSION_STORE_STATUS_H_
#define COMMON_STOWRAAPI_SERVICES_EXTENSION_STORE_STATUS_H_

#include <map>
#include <memory>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/observer.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/services/extension_store_item.h"

namespace ovrant::internet {
class InternetData;
class InternetDataDelegate;
}  // namespace ovrant::internet

// For the end of the transfers: message numbers, which the delegate carries, and notification
// names, which only the status objects observe.
STOWRA_EXPORT inline constexpr unsigned int kExtensionStoreStatusRequestReturnedMessage = 28002;
STOWRA_EXPORT inline constexpr unsigned int kExtensionStoreStatusRequestFailedMessage = 28003;
STOWRA_EXPORT extern const char* const kExtensionStoreStatusRequestReturnedNotification;
STOWRA_EXPORT extern const char* const kExtensionStoreStatusRequestFailedNotification;

// Posted to the host after an asynchronous request, with a null payload.
STOWRA_EXPORT extern const char* const kExtensionStoreAsynchStatusSucceededNotification;
STOWRA_EXPORT extern const char* const kExtensionStoreAsynchStatusFailedNotification;

namespace ovrant::extensionstoreapi {

// Sends a JSON text that the host composed to the extension store, keeps the response, and reads it
// into records when the host asks. Running out of memory is a failure like any other, and the
// object may be used on.
//
// Every status object hears the end of every transfer. It takes any failure for its own, and any
// return while it has a transport. A host therefore keeps one object with an asynchronous request
// in flight at a time.
//
// Owns its transport and delegate from AsynchronousStatus until the next one or destruction.
//
// Threads: one at a time. OnNotification runs on the thread that posts the transfer's end (see
// InternetData::SetCompletionExecutor). Observers of what it posts must not call AsynchronousStatus
// or the destructor of the object whose notification is being delivered. A debug build of this
// library aborts with a message if they do. At any other moment the object may be destroyed, and it
// posts nothing after that.
//
// Exceptions: only the constructor, Init, AddNotifications and GetItemMapFromResponse throw
// std::bad_alloc. An exception from an observer goes where WebServiceRequestBase says.
//
// The order of the members is part of the binary interface.
class STOWRA_EXPORT ExtensionStoreStatus : public IObserver {
 public:
  // Whether any request of any object in this process has succeeded. The library never resets it,
  // and sets it with a relaxed atomic store.
  static bool status_sync_completed_;

  ExtensionStoreStatus();
  ~ExtensionStoreStatus() override;

  ExtensionStoreStatus(const ExtensionStoreStatus&) = delete;
  ExtensionStoreStatus& operator=(const ExtensionStoreStatus&) = delete;

  // Sets the URL and the JSON text of later requests, and the context that their delegates pass on
  // and never dereference. Empties the response. A transfer in flight goes on with its old URL,
  // text and context. std::bad_alloc changes nothing.
  void Init(const ovrant::utils::ovrant_ustring& url, void* context,
            const ovrant::utils::ovrant_ustring& request_body);

  // Sends the request on this thread and posts nothing. True, and the response is kept, when it had
  // status 200, whatever its body. False for a failed transfer, an empty URL or any other status;
  // the last response stays. A background transfer goes on beside it.
  bool SynchronousStatus();

  // Drops the background transfer, if any, and sends the request in the background. Returns at
  // once. "ExtensionStoreAsyncStatusSucceeded" or "ExtensionStoreAsyncStatusFailed" follows.
  // Without memory or a thread to start the transfer, the latter is posted before this returns, on
  // this thread. Neither is posted once the process exits.
  void AsynchronousStatus();

  // Handles the end of this object's background transfer. Ignores any other name and the payload.
  // `name` must not be null.
  void OnNotification(const char* name, void* payload) override;
  using IObserver::OnNotification;

  // Handles a background transfer that ended with HTTP status `status`. 200 keeps the response,
  // whatever its body, and posts the success. Posts the failure for any other status, or if memory
  // runs out. Ignores 200 while there is no transport.
  void OnReceivedStatusResponse(unsigned int status);

  // The extensions of the last response, by id; see ExtensionStoreItem. Of a repeated id the last
  // one counts, and a missing id is the empty one. Empty if there is no response or it is not a
  // JSON object with an array "extensions".
  std::map<ovrant::utils::ovrant_ustring, ExtensionStoreItem> GetItemMapFromResponse();

  // Start and stop observing both transfer names at CNotificationCenter::Default(). The constructor
  // starts.
  void AddNotifications();
  void RemoveNotifications();

 private:
  ovrant::utils::ovrant_ustring url_;
  void* context_ = nullptr;
  ovrant::utils::ovrant_ustring request_body_;
  ovrant::utils::ovrant_ustring response_;
  std::unique_ptr<ovrant::internet::InternetData> internet_data_;
  std::unique_ptr<ovrant::internet::InternetDataDelegate> delegate_;
};

}  // namespace ovrant::extensionstoreapi

#endif  // COMMON_STOWRAAPI_SERVICES_EXTENSION_STORE_STATUS_H_

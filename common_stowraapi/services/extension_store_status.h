// The status of the installed extensions.

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

// The end of the transfers: message numbers, and names that only the status objects themselves
// observe.
STOWRA_EXPORT inline constexpr unsigned int kExtensionStoreStatusRequestReturnedMessage = 28002;
STOWRA_EXPORT inline constexpr unsigned int kExtensionStoreStatusRequestFailedMessage = 28003;
STOWRA_EXPORT extern const char* const kExtensionStoreStatusRequestReturnedNotification;
STOWRA_EXPORT extern const char* const kExtensionStoreStatusRequestFailedNotification;

// For the host, with a null payload, after an asynchronous request.
STOWRA_EXPORT extern const char* const kExtensionStoreAsynchStatusSucceededNotification;
STOWRA_EXPORT extern const char* const kExtensionStoreAsynchStatusFailedNotification;

namespace ovrant::extensionstoreapi {

// Sends a JSON text that the host composed to the extension store, keeps the answer, and reads it
// into records when the host asks.
//
// The transfer's notifications name no sender, and every object observes them: a host keeps one
// object with an asynchronous request in flight at a time. An object without a transfer of its own
// ignores a return, but takes a failure for its own.
//
// Owns its transport and delegate from AsynchronousStatus until the next one or destruction. For
// one thread at a time; OnNotification runs on the thread that posts the transfer's end (see
// InternetData::SetCompletionExecutor). AsynchronousStatus and the destructor must not be called
// while a notification for the same object is being delivered, by observers of what it posts; a
// debug build of this library aborts with a message then. Otherwise it may be destroyed at any
// moment, also by an observer of what another object posts, and posts nothing after that. The order
// of the members is part of the binary interface.
//
// A request that runs out of memory has failed, like any other that fails; the object may be used
// on. Only the constructor, Init, AddNotifications and GetItemMapFromResponse throw std::bad_alloc.
class STOWRA_EXPORT ExtensionStoreStatus : public IObserver {
 public:
  // Whether any request of any object in this process has succeeded. Never reset by the library.
  // Written with a relaxed atomic store.
  static bool status_sync_completed_;

  ExtensionStoreStatus();
  ~ExtensionStoreStatus() override;

  ExtensionStoreStatus(const ExtensionStoreStatus&) = delete;
  ExtensionStoreStatus& operator=(const ExtensionStoreStatus&) = delete;

  // Sets the service's URL, the context to hand to the transfer's delegate, which is never
  // dereferenced, and the JSON text to send; forgets the last response.
  void Init(const ovrant::utils::ovrant_ustring& url, void* context,
            const ovrant::utils::ovrant_ustring& request_body);

  // Sends the request on this thread. True when the response had status 200, whatever its body; it
  // is kept. False for a failed transfer (an empty URL among them) or any other status; the last
  // response stays. Posts nothing, and leaves a background transfer alone.
  bool SynchronousStatus();

  // Drops the background transfer, if any, and sends the request in the background. Returns at
  // once; "ExtensionStoreAsyncStatusSucceeded" or "ExtensionStoreAsyncStatusFailed" follows; the
  // latter at once, on this thread, when there is no memory for the transfer.
  void AsynchronousStatus();

  // Handles the end of this object's background transfer, by name; any other name is ignored.
  void OnNotification(const char* name, void* payload) override;
  using IObserver::OnNotification;

  // Handles a background transfer that ended with HTTP status `status`: 200 keeps the response,
  // which is not looked at, and posts the success; any other, or one that there is no memory to
  // keep, posts the failure. Ignores a 200 while there is no transfer.
  void OnReceivedStatusResponse(unsigned int status);

  // The last response's "extensions", by id; of a repeated id, the missing one included, the last
  // one counts. A member that is missing or of another type leaves its field at the default. Empty
  // when there is no response, or none that can be read.
  std::map<ovrant::utils::ovrant_ustring, ExtensionStoreItem> GetItemMapFromResponse();

  // Observes both transfer names through CNotificationCenter::Default(), as the constructor has
  // done; stops observing.
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

// Who is signed in.

#ifndef COMMON_STOWRAAPI_SERVICES_USER_INFO_QUERY_H_
#define COMMON_STOWRAAPI_SERVICES_USER_INFO_QUERY_H_

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/request/web_service_request_base.h"

namespace ovrant::webservices {

// Asks the account service for the signed-in user, a JSON object whose members are strings, and
// keeps its members as a cache that only a later valid answer, ClearCache or destruction replaces.
// Posts "UserInfoUpdated" when the cache may have changed; a failure posts nothing and changes
// nothing.
//
// Threads as WebServiceRequestBase; the cache is not locked.
class STOWRA_EXPORT UserInfoQuery : public WebServiceRequestBase {
 public:
  // Members of the answer. All but the display name are required, though they may be empty.
  static const ovrant::utils::ovrant_ustring kUserIdKey;
  static const ovrant::utils::ovrant_ustring kUserDisplayNameKey;
  static const ovrant::utils::ovrant_ustring kUserEmailKey;
  static const ovrant::utils::ovrant_ustring kUserVkrhIdKey;

  // The end of this class's transfers: message numbers, and names that only the objects themselves
  // observe.
  static const unsigned int kAsyncReturnedMessage = 28004;
  static const unsigned int kAsyncFailedMessage = 28005;
  static const char* const kAsynchReturnedNotification;
  static const char* const kAsyncFailedNotification;

  // For the host, with a null payload.
  static const char* const kUserInfoUpdatedNotification;

  UserInfoQuery();
  ~UserInfoQuery() override;

  // The cached value; the empty string when there is none of that name.
  ovrant::utils::ovrant_ustring GetUserInfoValue(ovrant::utils::ovrant_ustring key) const;

  // Empties the cache and posts "UserInfoUpdated".
  void ClearCache();

  // Posts "UserInfoUpdated".
  void SendCacheUpdateNotification();

  // Replaces the cache by the members of the JSON object in `body`; of a repeated name the last one
  // counts, and a value that is no string counts as the empty one. False, with the cache unchanged,
  // when `body` is not such an object or lacks a required member, or memory runs out.
  bool ParseResponse(const ovrant::utils::ovrant_ustring& body) override;

  // Success posts "UserInfoUpdated"; failure does nothing.
  void OnSyncResponseSuccess() override;
  void OnSyncResponseFail() override;
  void OnAsyncResponseSuccess() override;
  void OnAsyncResponseFail() override;

 private:
  ovrant::utils::StringMap user_info_cache_;
};

}  // namespace ovrant::webservices

#endif  // COMMON_STOWRAAPI_SERVICES_USER_INFO_QUERY_H_

// SPDX-License-Identifier: MIT
// Asks the account service who is signed in.

#ifndef COMMON_STOWRAAPI_SERVICES_USER_INFO_QUERY_H_
#define COMMON_STOWRAAPI_SERVICES_USER_INFO_QUERY_H_

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/request/web_service_request_base.h"

namespace ovrant::webservices {

// Asks the account service for the signed-in user: a JSON object whose members are strings. Caches
// its members until a later valid response, ClearCache or destruction. Posts "UserInfoUpdated" when
// the cache may have changed. A failed request posts nothing and changes nothing.
//
// Threads and exceptions as WebServiceRequestBase; GetUserInfoValue throws std::bad_alloc, too. The
// cache is not locked.
class STOWRA_EXPORT UserInfoQuery : public WebServiceRequestBase {
 public:
  // Members of the response. All but the display name are required; they may be empty.
  static const ovrant::utils::ovrant_ustring kUserIdKey;
  static const ovrant::utils::ovrant_ustring kUserDisplayNameKey;
  static const ovrant::utils::ovrant_ustring kUserEmailKey;
  static const ovrant::utils::ovrant_ustring kUserVkrhIdKey;

  // For the end of the transfers: message numbers, which the delegate carries, and notification
  // names, which only objects of this class observe.
  static const unsigned int kAsyncReturnedMessage = 28004;
  static const unsigned int kAsyncFailedMessage = 28005;
  static const char* const kAsynchReturnedNotification;
  static const char* const kAsyncFailedNotification;

  // Posted to the host with a null payload.
  static const char* const kUserInfoUpdatedNotification;

  UserInfoQuery();
  ~UserInfoQuery() override;

  // The cached value of `key`, or the empty string.
  ovrant::utils::ovrant_ustring GetUserInfoValue(ovrant::utils::ovrant_ustring key) const;

  // Empties the cache and posts "UserInfoUpdated".
  void ClearCache();

  // Posts "UserInfoUpdated".
  void SendCacheUpdateNotification();

  // Replaces the cache by the members of the JSON object in `body`. Of a repeated name the last one
  // counts. A value that is not a string is cached as the empty string. False, with the cache
  // unchanged, if `body` is not an object, lacks a required member, or memory runs out.
  bool ParseResponse(const ovrant::utils::ovrant_ustring& body) override;

  // Post "UserInfoUpdated" after a success; do nothing after a failure.
  void OnSyncResponseSuccess() override;
  void OnSyncResponseFail() override;
  void OnAsyncResponseSuccess() override;
  void OnAsyncResponseFail() override;

 private:
  ovrant::utils::StringMap user_info_cache_;
};

}  // namespace ovrant::webservices

#endif  // COMMON_STOWRAAPI_SERVICES_USER_INFO_QUERY_H_

// SPDX-License-Identifier: MIT
#include "common_stowraapi/services/user_info_query.h"

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/lookup.h"
#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/succeeds.h"

namespace ovrant::webservices {

using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

const ovrant_ustring UserInfoQuery::kUserIdKey("uid");
const ovrant_ustring UserInfoQuery::kUserDisplayNameKey("displayname");
const ovrant_ustring UserInfoQuery::kUserEmailKey("email");
const ovrant_ustring UserInfoQuery::kUserVkrhIdKey("vkr_id");
const unsigned int UserInfoQuery::kAsyncReturnedMessage;
const unsigned int UserInfoQuery::kAsyncFailedMessage;
const char* const UserInfoQuery::kAsynchReturnedNotification = "UserInfoQueryRequestReturned";
const char* const UserInfoQuery::kAsyncFailedNotification = "UserInfoQueryRequestFailed";
const char* const UserInfoQuery::kUserInfoUpdatedNotification = "UserInfoUpdated";

namespace {

StringMap ReadMembers(const ovrant_ustring& body) {
  StringMap members;
  if (body.empty()) return members;
  json::Document document;
  if (!document.Load(body)) return members;
  const json::Value root = json::Lookup::Root(document);
  for (unsigned int i = 0; i < document.MemberCount(); ++i) {
    members[document.MemberNameAt(i)] = json::Lookup::MemberAt(root, i).GetString();
  }
  return members;
}

}  // namespace

UserInfoQuery::UserInfoQuery() {
  returned_notification_ = kAsynchReturnedNotification;
  returned_message_ = kAsyncReturnedMessage;
  failed_notification_ = kAsyncFailedNotification;
  failed_message_ = kAsyncFailedMessage;
  AddNotifications();
}

UserInfoQuery::~UserInfoQuery() { RemoveNotifications(); }

ovrant_ustring UserInfoQuery::GetUserInfoValue(ovrant_ustring key) const {
  const auto entry = user_info_cache_.find(key);
  return entry == user_info_cache_.end() ? ovrant_ustring() : entry->second;
}

void UserInfoQuery::ClearCache() {
  user_info_cache_.clear();
  SendCacheUpdateNotification();
}

void UserInfoQuery::SendCacheUpdateNotification() {
  CNotificationCenter::Default()->SendNotification(kUserInfoUpdatedNotification, nullptr);
}

bool UserInfoQuery::ParseResponse(const ovrant_ustring& body) {
  return Succeeds([&] {
    StringMap candidate = ReadMembers(body);
    for (const ovrant_ustring* key : {&kUserIdKey, &kUserEmailKey, &kUserVkrhIdKey}) {
      if (candidate.count(*key) == 0) return false;
    }
    user_info_cache_.swap(candidate);
    return true;
  });
}

void UserInfoQuery::OnSyncResponseSuccess() { SendCacheUpdateNotification(); }
void UserInfoQuery::OnSyncResponseFail() {}
void UserInfoQuery::OnAsyncResponseSuccess() { SendCacheUpdateNotification(); }
void UserInfoQuery::OnAsyncResponseFail() {}

}  // namespace ovrant::webservices

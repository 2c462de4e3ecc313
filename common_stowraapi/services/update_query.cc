// SPDX-License-Identifier: MIT
#include "common_stowraapi/services/update_query.h"

#include <cstddef>
#include <utility>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/lookup.h"
#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/services/json_fields.h"
#include "common_stowraapi/succeeds.h"

namespace ovrant::webservices {

using ovrant::json::Lookup;
using ovrant::json::ReadNumber;
using ovrant::json::ReadString;
using ovrant::json::Value;
using ovrant::utils::ovrant_ustring;

const unsigned int UpdateQuery::kAsyncReturnedMessage;
const unsigned int UpdateQuery::kAsyncFailedMessage;
const char* const UpdateQuery::kAsynchReturnedNotification = "UpdateQueryReturned";
const char* const UpdateQuery::kAsyncFailedNotification = "UpdateQueryFailed";
const char* const UpdateQuery::kUpdateQuerySucceededNotification = "UpdateQueryAsyncSucceeded";
const char* const UpdateQuery::kUpdateQueryFailedNotification = "UpdateQueryAsyncFailed";

namespace {

void Post(const char* name) { CNotificationCenter::Default()->SendNotification(name, nullptr); }

void ReadMessage(const Value& message, MessageData& result) {
  ReadNumber(message, "id", result.id);
  ReadNumber(message, "max_shows", result.max_shows);
  ReadNumber(message, "width", result.width);
  ReadNumber(message, "height", result.height);
  ReadString(message, "title", result.title);
  ReadString(message, "url", result.url);
}

std::size_t CountObjects(const Value& array) {
  std::size_t count = 0;
  for (unsigned int i = 0; i < array.Size(); ++i) count += Lookup::Element(array, i).IsObject();
  return count;
}

void AppendDataFiles(const Value& files, std::vector<DataFileData>& result) {
  if (!files.IsArray()) return;
  result.reserve(CountObjects(files));
  for (unsigned int i = 0; i < files.Size(); ++i) {
    const Value file = Lookup::Element(files, i);
    if (!file.IsObject()) continue;
    DataFileData record;
    ReadNumber(file, "version", record.version);
    ReadString(file, "filename", record.filename);
    ReadString(file, "url", record.url);
    result.push_back(std::move(record));
  }
}

bool ReadResults(const ovrant_ustring& body, UpdateQuery& query) {
  json::Document document;
  if (!document.Load(body)) return false;
  const Value root = Lookup::Root(document);
  const Value update = Lookup::Member(root, "update");
  ReadString(update, "current_version", query.current_version_);
  ReadString(update, "expire_version", query.expire_version_);
  // A version kept from an earlier response counts.
  const bool valid = update.HasMember("expire_version") && !query.current_version_.empty() &&
                     !query.expire_version_.empty();

  ReadMessage(Lookup::Member(root, "message"), query.message_);
  AppendDataFiles(Lookup::Member(root, "datafiles"), query.data_files_);
  return valid;
}

}  // namespace

MessageData::MessageData() = default;
MessageData::MessageData(const MessageData& other) = default;
MessageData::MessageData(MessageData&& other) noexcept = default;
MessageData& MessageData::operator=(const MessageData& other) = default;
MessageData& MessageData::operator=(MessageData&& other) noexcept = default;
MessageData::~MessageData() = default;

DataFileData::DataFileData() = default;
DataFileData::DataFileData(const DataFileData& other) = default;
DataFileData::DataFileData(DataFileData&& other) noexcept = default;
DataFileData& DataFileData::operator=(const DataFileData& other) = default;
DataFileData& DataFileData::operator=(DataFileData&& other) noexcept = default;
DataFileData::~DataFileData() = default;

UpdateQuery::UpdateQuery() {
  returned_notification_ = kAsynchReturnedNotification;
  returned_message_ = kAsyncReturnedMessage;
  failed_notification_ = kAsyncFailedNotification;
  failed_message_ = kAsyncFailedMessage;
  AddNotifications();
}

UpdateQuery::~UpdateQuery() { RemoveNotifications(); }

bool UpdateQuery::ParseResponse(const ovrant_ustring& body) {
  data_files_.clear();
  return !body.empty() && Succeeds([&] { return ReadResults(body, *this); });
}

void UpdateQuery::OnSyncResponseSuccess() { Post(kUpdateQuerySucceededNotification); }
void UpdateQuery::OnSyncResponseFail() { Post(kUpdateQueryFailedNotification); }
void UpdateQuery::OnAsyncResponseSuccess() { Post(kUpdateQuerySucceededNotification); }
void UpdateQuery::OnAsyncResponseFail() { Post(kUpdateQueryFailedNotification); }

}  // namespace ovrant::webservices

// Which version, message and data files the update service offers.

#ifndef COMMON_STOWRAAPI_SERVICES_UPDATE_QUERY_H_
#define COMMON_STOWRAAPI_SERVICES_UPDATE_QUERY_H_

#include <vector>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/request/web_service_request_base.h"

namespace ovrant::webservices {

// A message to show to the user.
struct STOWRA_EXPORT MessageData {
  MessageData();
  MessageData(const MessageData& other);
  MessageData(MessageData&& other) noexcept;
  MessageData& operator=(const MessageData& other);
  MessageData& operator=(MessageData&& other) noexcept;
  ~MessageData();

  int id = -1;        // -1: no message
  int max_shows = 1;  // how often it may be shown
  int width = 430;    // of the area that shows it
  int height = 540;
  ovrant::utils::ovrant_ustring title;
  ovrant::utils::ovrant_ustring url;  // of the content
};

// A data file to fetch.
struct STOWRA_EXPORT DataFileData {
  DataFileData();
  DataFileData(const DataFileData& other);
  DataFileData(DataFileData&& other) noexcept;
  DataFileData& operator=(const DataFileData& other);
  DataFileData& operator=(DataFileData&& other) noexcept;
  ~DataFileData();

  int version = -1;
  ovrant::utils::ovrant_ustring filename;  // local name
  ovrant::utils::ovrant_ustring url;
};

// Asks the update service, which answers in JSON, and holds the results for the host to read after
// a notification. Every request, synchronous or not, that reaches its end posts
// "UpdateQueryAsyncSucceeded" or "UpdateQueryAsyncFailed". An answer counts as a success only when
// it has an update part that leaves both versions non-empty; the results are stored either way.
//
// Threads as WebServiceRequestBase; the results are not locked.
class STOWRA_EXPORT UpdateQuery : public WebServiceRequestBase {
 public:
  // The end of this class's transfers: message numbers, and names that only the objects themselves
  // observe.
  static const unsigned int kAsyncReturnedMessage = 28006;
  static const unsigned int kAsyncFailedMessage = 28007;
  static const char* const kAsynchReturnedNotification;
  static const char* const kAsyncFailedNotification;

  // For the host, with a null payload.
  static const char* const kUpdateQuerySucceededNotification;
  static const char* const kUpdateQueryFailedNotification;

  UpdateQuery();
  ~UpdateQuery() override;

  // Reads the results from the JSON object in `body`. Each field that is missing there, or has
  // another type, keeps the value it had, from an earlier answer too; data_files_ is emptied first,
  // whatever follows. True when `body` has an "update" with an "expire_version" and both versions
  // are now non-empty. False otherwise, and for want of memory, with what could be read.
  bool ParseResponse(const ovrant::utils::ovrant_ustring& body) override;

  // Post "UpdateQueryAsyncSucceeded" and "UpdateQueryAsyncFailed".
  void OnSyncResponseSuccess() override;
  void OnSyncResponseFail() override;
  void OnAsyncResponseSuccess() override;
  void OnAsyncResponseFail() override;

  // The results, in the service's own spelling and order.
  ovrant::utils::ovrant_ustring current_version_;
  ovrant::utils::ovrant_ustring expire_version_;
  MessageData message_;
  std::vector<DataFileData> data_files_;
};

}  // namespace ovrant::webservices

#endif  // COMMON_STOWRAAPI_SERVICES_UPDATE_QUERY_H_

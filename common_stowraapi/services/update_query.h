// SPDX-License-Identifier: MIT
// Asks the update service for the current version, a message and data files.

#ifndef COMMON_STOWRAAPI_SERVICES_UPDATE_QUERY_H_
#define COMMON_STOWRAAPI_SERVICES_UPDATE_QUERY_H_

#include <vector>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/request/web_service_request_base.h"

namespace ovrant::webservices {

// A message to show to the user. The library only stores its values: the unit of width and height
// is between the service and the host.
struct STOWRA_EXPORT MessageData {
  MessageData();
  MessageData(const MessageData& other);
  MessageData(MessageData&& other) noexcept;
  MessageData& operator=(const MessageData& other);
  MessageData& operator=(MessageData&& other) noexcept;
  ~MessageData();

  int id = -1;        // -1: no message
  int max_shows = 1;  // how often the host may show it
  int width = 430;    // of the display area
  int height = 540;
  ovrant::utils::ovrant_ustring title;
  ovrant::utils::ovrant_ustring url;  // address of the content
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

// Asks the update service, which answers in JSON, and holds the results. Every request that ends,
// synchronous or not, posts "UpdateQueryAsyncSucceeded" or "UpdateQueryAsyncFailed"; the host then
// reads the results. A response is a success only if ParseResponse says so, but what it held is
// stored either way.
//
// Threads and exceptions as WebServiceRequestBase. The results are not locked.
class STOWRA_EXPORT UpdateQuery : public WebServiceRequestBase {
 public:
  // For the end of the transfers: message numbers, which the delegate carries, and notification
  // names, which only objects of this class observe.
  static const unsigned int kAsyncReturnedMessage = 28006;
  static const unsigned int kAsyncFailedMessage = 28007;
  static const char* const kAsynchReturnedNotification;
  static const char* const kAsyncFailedNotification;

  // Posted to the host with a null payload.
  static const char* const kUpdateQuerySucceededNotification;
  static const char* const kUpdateQueryFailedNotification;

  UpdateQuery();
  ~UpdateQuery() override;

  // Reads the results from the JSON object in `body`. Empties data_files_ first, in any case. Each
  // other field keeps its value if its member is missing or has another type. These members are
  // read:
  //   - "update" has the strings "current_version" and "expire_version".
  //   - "message" has the numbers "id", "max_shows", "width" and "height". It has the strings
  //     "title" and "url".
  //   - "datafiles" is an array of objects. Each has the number "version". Each has the strings
  //     "filename" and "url".
  //
  // True when "update" has a member "expire_version" and both versions are now non-empty, even from
  // an earlier response. False otherwise, also when memory runs out; the results then hold what was
  // read.
  bool ParseResponse(const ovrant::utils::ovrant_ustring& body) override;

  // Post "UpdateQueryAsyncSucceeded" after a success, "UpdateQueryAsyncFailed" after a failure.
  void OnSyncResponseSuccess() override;
  void OnSyncResponseFail() override;
  void OnAsyncResponseSuccess() override;
  void OnAsyncResponseFail() override;

  // The results, as the service spells and orders them.
  ovrant::utils::ovrant_ustring current_version_;
  ovrant::utils::ovrant_ustring expire_version_;
  MessageData message_;
  std::vector<DataFileData> data_files_;
};

}  // namespace ovrant::webservices

#endif  // COMMON_STOWRAAPI_SERVICES_UPDATE_QUERY_H_

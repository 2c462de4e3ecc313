// What a transport keeps of its last transfer.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_RECORD_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_RECORD_H_

#include "common_stowraapi/platform/http/header_fields.h"

namespace ovrant::internet {

class TransferRecord {
 public:
  TransferRecord() = default;
  virtual ~TransferRecord() = default;

  TransferRecord(const TransferRecord&) = delete;
  TransferRecord& operator=(const TransferRecord&) = delete;

  // The transport is going: on return nothing of this transfer is posted, or being posted, any
  // more, except that inside a delivery it does not wait for a post under way. Whether it had yet
  // to be delivered. Any thread.
  virtual bool Abandon() { return false; }

  // The response's, until somebody reads them. The transport's own.
  HeaderFields unread_headers;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_RECORD_H_

// SPDX-License-Identifier: MIT
// The part of a transfer that its transport keeps.

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

  // Detaches the transfer from its transport. On return nothing of this transfer is posted any
  // more. Waits for a post under way as DeliveryGate::Close does. Returns the transfer's number, or
  // 0 when nothing of it runs or waits. Any thread.
  virtual unsigned long Abandon() { return 0; }

  // The response's headers until they are first read. Only the transport uses them.
  HeaderFields unread_headers;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_RECORD_H_

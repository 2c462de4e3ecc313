// SPDX-License-Identifier: MIT
// One step of a transfer, as a line of a trace file.

#ifndef HOST_TRACE_RECORD_H_
#define HOST_TRACE_RECORD_H_

#include <string>
#include <string_view>

#include "common_stowraapi/platform/transfer_types.h"

namespace stowra {

struct TraceRecord {
  double time = 0;  // seconds since the trace began
  ovrant::internet::TransferEvent event;
};

// A record whose times are whole microseconds, as in a trace file.
TraceRecord MakeTraceRecord(double time, const ovrant::internet::TransferEvent& event);

// The words of a trace file, such as "first-byte" and "not-connected".
const char* WordOf(ovrant::internet::TransferEvent::Kind kind);
const char* WordOf(ovrant::internet::TransferError error);

// The record as an object on one line, with its line break. docs/trace.md lists the members.
std::string ToTraceLine(const TraceRecord& record);

// Reads such a line. If that fails, returns false with the reason in `why`, and `record` is
// unspecified. Unknown members are left out.
bool ReadTraceLine(std::string_view line, TraceRecord& record, std::string& why);

}  // namespace stowra

#endif  // HOST_TRACE_RECORD_H_

// SPDX-License-Identifier: MIT
// Where the time of each request went.

#ifndef HOST_WATERFALL_H_
#define HOST_WATERFALL_H_

#include <map>
#include <string>
#include <vector>

#include "host/trace_record.h"

namespace stowra {

// What a request waits for.
enum class Phase { kQueued, kName, kConnect, kTls, kWait, kReceive };

inline constexpr Phase kPhases[] = {Phase::kQueued, Phase::kName, Phase::kConnect,
                                    Phase::kTls,    Phase::kWait, Phase::kReceive};

const char* NameOf(Phase phase);

// A part of a request's time, in seconds since the trace began.
struct PhaseBar {
  Phase phase;
  double begin;
  double end;
};

// One request. A redirect makes another one.
struct RequestRow {
  unsigned long transfer = 0;
  std::string method;
  std::string url;     // printable ASCII
  std::string result;  // an HTTP status, a reason such as "silent", or "unfinished"
  bool has_failed = false;
  bool is_reused = false;  // on a kept connection
  double begin = 0;
  double end = 0;
  std::vector<PhaseBar> bars;  // in order; without overlap
};

// Makes the rows from the records of a trace, in the order of time.
class Waterfall {
 public:
  void Add(const TraceRecord& record);

  // All requests so far. Those that run are "unfinished" and end with the last record.
  std::vector<RequestRow> Rows() const;

 private:
  struct Transfer {
    std::size_t row;  // of the request that runs
    Phase phase;
    double phase_begin;
    ovrant::internet::TransferTimes before;  // of the earlier requests
    int status;                              // of the last response
  };

  void Begin(const TraceRecord& record, Phase phase);
  void EndConnecting(const TraceRecord& record, Transfer& transfer, bool is_connected);
  void EndRequest(const TraceRecord& record, Transfer& transfer);
  void EndPhase(double time, const Transfer& transfer);

  std::vector<RequestRow> rows_;
  std::map<unsigned long, Transfer> running_;
  double last_ = 0;
};

}  // namespace stowra

#endif  // HOST_WATERFALL_H_

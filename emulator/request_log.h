// SPDX-License-Identifier: MIT
// One line for each request.

#ifndef EMULATOR_REQUEST_LOG_H_
#define EMULATOR_REQUEST_LOG_H_

#include <cstdint>
#include <mutex>
#include <ostream>
#include <string>

namespace stowra_emulator {

struct LogEntry {
  std::string method;
  std::string target;  // Path and query, as sent.
  int status = 0;
  std::uint64_t body_bytes = 0;  // Bytes of the body that were sent.
};

// Safe from any thread.
class RequestLog {
 public:
  // Writes to `out`, which must outlive this object. Writes nothing if it is null.
  explicit RequestLog(std::ostream* out) : out_(out) {}

  void Write(const LogEntry& entry);

 private:
  std::mutex mutex_;
  std::ostream* const out_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_REQUEST_LOG_H_

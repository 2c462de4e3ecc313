// The emulator as a whole.

#ifndef EMULATOR_EMULATOR_H_
#define EMULATOR_EMULATOR_H_

#include <cstdint>
#include <ostream>
#include <string>

#include "emulator/dispatcher.h"
#include "emulator/listener.h"
#include "emulator/request_log.h"
#include "emulator/stop_event.h"

namespace stowra_emulator {

struct EmulatorOptions {
  std::uint16_t port = 0;       // 0 takes any free port.
  std::string database_file;    // Empty keeps the data in memory.
  std::ostream* log = nullptr;  // Gets a line for each request. Must outlive the emulator.
  // Of a request, as sent (bytes). SQLite takes no value of more than 10^9 bytes.
  std::uint64_t max_body_size = 512 << 20;
};

// A server on 127.0.0.1. It is ready when the constructor returns. The destructor cuts open
// connections and returns soon. Serves requests on threads of its own. Makes the whole process
// ignore SIGPIPE.
class Emulator {
 public:
  // Throws a std::exception with the reason, in one line, if it cannot start.
  explicit Emulator(const EmulatorOptions& options = EmulatorOptions());
  ~Emulator() { stop_.Set(); }

  std::uint16_t port() const { return listener_.port(); }

  // Such as "http://127.0.0.1:8080", without a final slash.
  std::string url() const;

 private:
  StopEvent stop_;
  Dispatcher dispatcher_;
  RequestLog log_;
  Listener listener_;  // Last, because its threads use the others.
};

}  // namespace stowra_emulator

#endif  // EMULATOR_EMULATOR_H_

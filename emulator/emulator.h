// SPDX-License-Identifier: MIT
// The emulator as a whole.

#ifndef EMULATOR_EMULATOR_H_
#define EMULATOR_EMULATOR_H_

#include <cstdint>
#include <string>

#include "emulator/emulator_options.h"
#include "emulator/listener.h"
#include "emulator/server_state.h"

namespace stowra_emulator {

// A server. It is ready when the constructor returns. The destructor cuts open connections and
// returns soon. Serves requests on threads of its own. Makes the whole process ignore SIGPIPE.
class Emulator {
 public:
  // Throws a std::exception with the reason, in one line, if it cannot start.
  explicit Emulator(const EmulatorOptions& options = EmulatorOptions());
  ~Emulator() { state_.Stop(); }

  std::uint16_t port() const { return listener_.address().port(); }

  // Such as "http://127.0.0.1:8080", without a final slash.
  std::string url() const;

  // The certificate that a client needs to trust the server. Empty without TLS.
  std::string ca_file() const;

 private:
  ServerState state_;
  Listener listener_;  // Last, because its threads use the state.
};

}  // namespace stowra_emulator

#endif  // EMULATOR_EMULATOR_H_

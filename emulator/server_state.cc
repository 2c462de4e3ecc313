// SPDX-License-Identifier: MIT
#include "emulator/server_state.h"

namespace stowra_emulator {

ServerState::ServerState(const EmulatorOptions& options)
    : source(options.source),
      limits(options.limits),
      faults(options.seed),
      log(options.log),
      dispatcher(options.database_file, faults, journal, source.get()) {
  if (options.use_tls) tls.emplace(options.address);
  for (const FaultRule& rule : options.faults) faults.Add(rule);
}

void ServerState::Stop() {
  stop.Set();
  journal.Close();
}

}  // namespace stowra_emulator

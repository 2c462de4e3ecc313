#include "emulator/server_state.h"

namespace stowra_emulator {

ServerState::ServerState(const EmulatorOptions& options)
    : dispatcher(options.database_file),
      faults(options.seed),
      log(options.log),
      limits(options.limits) {
  if (options.use_tls) tls.emplace(options.address);
  for (const FaultRule& rule : options.faults) faults.Add(rule);
}

}  // namespace stowra_emulator

// SPDX-License-Identifier: MIT
// What all connections share.

#ifndef EMULATOR_SERVER_STATE_H_
#define EMULATOR_SERVER_STATE_H_

#include <memory>
#include <optional>

#include "emulator/console/journal.h"
#include "emulator/dispatcher.h"
#include "emulator/emulator_options.h"
#include "emulator/exchange_source.h"
#include "emulator/fault_plan.h"
#include "emulator/limits.h"
#include "emulator/request_log.h"
#include "emulator/stop_event.h"
#include "emulator/tls_identity.h"

namespace stowra_emulator {

struct ServerState {
  // Throws what its members throw.
  explicit ServerState(const EmulatorOptions& options);

  // Ends every wait.
  void Stop();

  SSL_CTX* tls_context() const { return tls ? &tls->context() : nullptr; }

  StopEvent stop;
  std::optional<TlsIdentity> tls;
  const std::shared_ptr<ExchangeSource> source;  // Null if the services answer.
  const Limits limits;
  FaultPlan faults;
  Journal journal;
  RequestLog log;
  Dispatcher dispatcher;  // Uses the others.
};

}  // namespace stowra_emulator

#endif  // EMULATOR_SERVER_STATE_H_

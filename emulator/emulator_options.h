// SPDX-License-Identifier: MIT
// What an emulator can be told.

#ifndef EMULATOR_EMULATOR_OPTIONS_H_
#define EMULATOR_EMULATOR_OPTIONS_H_

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "emulator/exchange_source.h"
#include "emulator/fault_plan.h"
#include "emulator/limits.h"

namespace stowra_emulator {

struct EmulatorOptions {
  std::string address = "127.0.0.1";  // The IP address to listen on.
  std::uint16_t port = 0;             // 0 takes any free port.
  bool use_tls = false;               // With a certificate of this run.
  std::string database_file;          // Empty keeps the data in memory.
  std::vector<FaultRule> faults;
  std::uint64_t seed = 1;       // Of the faults' percentages.
  std::ostream* log = nullptr;  // Gets a line for each request. Must outlive the emulator.
  Limits limits;                // Of each request.
  // Answers in place of the services. Null without a recording.
  std::shared_ptr<ExchangeSource> source;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_EMULATOR_OPTIONS_H_

// SPDX-License-Identifier: MIT
#include "emulator/emulator.h"

#include <utility>

#include "emulator/connection.h"

namespace stowra_emulator {

Emulator::Emulator(const EmulatorOptions& options)
    : state_(options),
      listener_(SocketAddress(options.address, options.port), state_.stop,
                [this](FileDescriptor client) { Connection(std::move(client), state_).Serve(); }) {}

std::string Emulator::url() const {
  return (state_.tls ? "https://" : "http://") + listener_.address().ToString();
}

std::string Emulator::ca_file() const { return state_.tls ? state_.tls->ca_file() : std::string(); }

}  // namespace stowra_emulator

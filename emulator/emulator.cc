#include "emulator/emulator.h"

#include <utility>

#include "emulator/connection.h"

namespace stowra_emulator {

Emulator::Emulator(const EmulatorOptions& options)
    : dispatcher_(options.database_file),
      log_(options.log),
      listener_(options.port, stop_,
                [this, max_body_size = options.max_body_size](FileDescriptor client) {
                  Connection(std::move(client), stop_, dispatcher_, log_, max_body_size).Serve();
                }) {}

std::string Emulator::url() const { return "http://127.0.0.1:" + std::to_string(port()); }

}  // namespace stowra_emulator

// SPDX-License-Identifier: MIT
// stowra-emulator: local services to develop and test against.

#include <pthread.h>

#include <csignal>
#include <exception>
#include <iostream>

#include "emulator/command_line.h"
#include "emulator/emulator.h"

namespace {

constexpr int kCannotStart = 1;

// Threads that start later block them too, so only WaitForSignal receives them.
sigset_t BlockEndingSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return signals;
}

void WaitForSignal(const sigset_t& signals) {
  int received = 0;
  sigwait(&signals, &received);
}

}  // namespace

int main(int argc, char** argv) {
  const sigset_t signals = BlockEndingSignals();
  try {
    stowra_emulator::EmulatorOptions options;
    if (const auto status = stowra_emulator::ReadCommandLine(argc, argv, options)) return *status;
    const stowra_emulator::Emulator emulator(options);
    std::cout << emulator.url() << std::endl;
    if (!emulator.ca_file().empty()) std::cout << emulator.ca_file() << std::endl;
    WaitForSignal(signals);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "stowra-emulator: " << error.what() << std::endl;
    return kCannotStart;
  }
}

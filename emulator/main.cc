// stowra-emulator: local services to develop and test against.

#include <pthread.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>
#include <iostream>

#include "emulator/emulator.h"

namespace {

constexpr int kCannotStart = 1;
constexpr int kUsageError = 2;

constexpr const char* kHelp =
    "Examples:\n"
    "  stowra-emulator\n"
    "  stowra-emulator --port 8080 --database services.db\n"
    "  curl http://127.0.0.1:8080/user-info\n"
    "  curl 'http://127.0.0.1:8080/update?fault=status:503'\n"
    "\n"
    "Local services to develop and test against. Prints its address when it is ready.\n"
    "Serves until it is interrupted. GET / lists the routes and the faults.\n";

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

int Run(const stowra_emulator::EmulatorOptions& options) {
  const sigset_t signals = BlockEndingSignals();
  try {
    const stowra_emulator::Emulator emulator(options);
    std::cout << emulator.url() << std::endl;
    WaitForSignal(signals);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "stowra-emulator: " << error.what() << std::endl;
    return kCannotStart;
  }
}

}  // namespace

int main(int argc, char** argv) {
  stowra_emulator::EmulatorOptions options;
  bool quiet = false;
  CLI::App app(kHelp, "stowra-emulator");
  app.add_option("--port", options.port, "Port to listen on; 0, the default, takes any free port");
  app.add_option("--database", options.database_file,
                 "SQLite file with the data, filled if it is new; without it, data is in memory")
      ->type_name("FILE");
  app.add_flag("--quiet", quiet, "Do not log requests to standard error");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kUsageError;
  }
  if (!quiet) options.log = &std::cerr;
  return Run(options);
}

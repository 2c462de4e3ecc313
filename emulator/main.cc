// stowra-emulator: local services to develop and test against.

#include <pthread.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "emulator/emulator.h"
#include "emulator/route.h"

namespace {

constexpr int kCannotStart = 1;
constexpr int kUsageError = 2;

constexpr const char* kHelp =
    "Examples:\n"
    "  stowra-emulator\n"
    "  stowra-emulator --port 8080 --database services.db\n"
    "  curl http://127.0.0.1:8080/user-info\n"
    "  curl 'http://127.0.0.1:8080/update?fault=status:503'\n"
    "  stowra-emulator --fault /update=status:503@25 --fault '*=stall:2'\n"
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

std::vector<std::string> ServicePaths() {
  std::vector<std::string> paths;
  for (const stowra_emulator::Route& route : stowra_emulator::Routes()) paths.push_back(route.path);
  return paths;
}

// Throws std::invalid_argument for a bad rule.
std::vector<stowra_emulator::FaultRule> ParseFaultRules(const std::vector<std::string>& texts) {
  std::vector<stowra_emulator::FaultRule> rules;
  for (const std::string& text : texts) {
    rules.push_back(stowra_emulator::ParseFaultRule(text, ServicePaths()));
  }
  return rules;
}

int Run(const stowra_emulator::EmulatorOptions& options) {
  const sigset_t signals = BlockEndingSignals();
  try {
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

}  // namespace

int main(int argc, char** argv) {
  stowra_emulator::EmulatorOptions options;
  bool quiet = false;
  std::vector<std::string> faults;
  CLI::App app(kHelp, "stowra-emulator");
  app.set_version_flag("--version", "stowra-emulator " STOWRA_VERSION);
  app.add_option("--listen", options.address, "IP address to listen on; default 127.0.0.1")
      ->type_name("ADDRESS");
  app.add_option("--port", options.port, "Port to listen on; 0, the default, takes any free port");
  app.add_flag("--tls", options.use_tls,
               "Serve HTTPS with a certificate for this run; prints its CA file");
  app.add_option(
         "--fault", faults,
         "Spoil the answers of a route, or of all with '*'. PERCENT of the requests are met, "
         "default 100. May be repeated; the first rule that strikes decides")
      ->type_name("ROUTE=KIND[:VALUE][@PERCENT]")
      ->allow_extra_args(false);
  app.add_option("--seed", options.seed,
                 "Which requests a percentage meets; the same seed repeats a run; default 1")
      ->type_name("N");
  app.add_option("--database", options.database_file,
                 "SQLite file with the data, filled if it is new; without it, data is in memory")
      ->type_name("FILE");
  app.add_flag("--quiet", quiet, "Do not log requests to standard error");
  try {
    app.parse(argc, argv);
    options.faults = ParseFaultRules(faults);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kUsageError;
  } catch (const std::invalid_argument& error) {
    std::cerr << "stowra-emulator: --fault: " << error.what() << std::endl;
    return kUsageError;
  }
  if (!quiet) options.log = &std::cerr;
  return Run(options);
}

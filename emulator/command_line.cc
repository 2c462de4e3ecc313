// SPDX-License-Identifier: MIT
#include "emulator/command_line.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "emulator/replay/player.h"
#include "emulator/replay/recorder.h"
#include "emulator/route.h"

namespace stowra_emulator {
namespace {

constexpr int kUsageError = 2;

constexpr const char* kHelp =
    "Examples:\n"
    "  stowra-emulator\n"
    "  stowra-emulator --port 8080 --database services.db\n"
    "  curl http://127.0.0.1:8080/user-info\n"
    "  curl 'http://127.0.0.1:8080/update?fault=status:503'\n"
    "  stowra-emulator --fault /update=status:503@25 --fault '*=stall:2'\n"
    "  stowra-emulator --record session.har --upstream https://www.example.com\n"
    "  stowra-emulator --replay session.har --replay-order matched\n"
    "\n"
    "Local services to develop and test against. Prints its address when it is ready.\n"
    "Serves until it is interrupted. GET / lists the routes and the faults.\n";

// The arguments that need more than a conversion.
struct Arguments {
  std::vector<std::string> faults;
  bool quiet = false;
  std::string record_file;
  std::string upstream;
  std::string replay_file;
  ReplayOrder replay_order = ReplayOrder::kRecorded;
  double replay_speed = 0;
};

void AddServerOptions(CLI::App& app, EmulatorOptions& options, Arguments& arguments) {
  app.set_version_flag("--version", "stowra-emulator " STOWRA_VERSION);
  app.add_option("--listen", options.address, "IP address to listen on; default 127.0.0.1")
      ->type_name("ADDRESS");
  app.add_option("--port", options.port, "Port to listen on; 0, the default, takes any free port")
      ->type_name("N");
  app.add_flag("--tls", options.use_tls,
               "Serve HTTPS with a certificate for this run; prints its CA file after the address");
  app.add_option("--database", options.database_file,
                 "SQLite file with the data, filled if it is new; without it, data is in memory")
      ->type_name("FILE");
  app.add_flag("--quiet", arguments.quiet, "Do not log requests to standard error");
}

void AddFaultOptions(CLI::App& app, EmulatorOptions& options, Arguments& arguments) {
  app.add_option("--fault", arguments.faults,
                 "Spoil the answers of a route, or of all with '*'. PERCENT of the requests are "
                 "met, default 100. May be repeated; the first rule that strikes decides")
      ->type_name("ROUTE=KIND[:VALUE][@PERCENT]")
      ->allow_extra_args(false);
  app.add_option("--seed", options.seed,
                 "Which requests a percentage meets; the same seed repeats a run; default 1")
      ->type_name("N");
}

void AddReplayOptions(CLI::App& app, Arguments& arguments) {
  CLI::Option* record = app.add_option("--record", arguments.record_file,
                                       "Pass requests on to --upstream and keep the exchanges, "
                                       "without credentials, as an HTTP Archive");
  CLI::Option* upstream = app.add_option("--upstream", arguments.upstream,
                                         "Server to record, such as https://www.example.com");
  CLI::Option* replay = app.add_option("--replay", arguments.replay_file,
                                       "Give back the responses in an HTTP Archive, from --record "
                                       "or from a browser");
  record->type_name("FILE")->needs(upstream);
  upstream->type_name("URL")->needs(record);
  replay->type_name("FILE")->excludes(record);
  const std::map<std::string, ReplayOrder> orders = {{"recorded", ReplayOrder::kRecorded},
                                                     {"matched", ReplayOrder::kMatched}};
  app.add_option("--replay-order", arguments.replay_order,
                 "'recorded', the default, gives one response after the other; 'matched' goes by "
                 "method and address")
      ->type_name("ORDER")
      ->transform(CLI::CheckedTransformer(orders))
      ->needs(replay);
  app.add_option("--replay-speed", arguments.replay_speed,
                 "1 takes as long as the recording did, 2 half as long; 0, the default, no time")
      ->type_name("FACTOR")
      ->check(CLI::NonNegativeNumber)
      ->needs(replay);
}

void AddOptions(CLI::App& app, EmulatorOptions& options, Arguments& arguments) {
  AddServerOptions(app, options, arguments);
  AddFaultOptions(app, options, arguments);
  AddReplayOptions(app, arguments);
}

std::shared_ptr<ExchangeSource> MakeSource(const Arguments& arguments, const Limits& limits) {
  if (!arguments.record_file.empty()) {
    return std::make_shared<Recorder>(arguments.record_file, arguments.upstream, limits.body);
  }
  if (arguments.replay_file.empty()) return nullptr;
  return std::make_shared<Player>(ReadRecording(arguments.replay_file), arguments.replay_order,
                                  arguments.replay_speed);
}

}  // namespace

std::optional<int> ReadCommandLine(int argc, const char* const* argv, EmulatorOptions& options) {
  Arguments arguments;
  CLI::App app(kHelp, "stowra-emulator");
  AddOptions(app, options, arguments);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kUsageError;
  }
  if (!arguments.quiet) options.log = &std::cerr;
  options.source = MakeSource(arguments, options.limits);
  try {
    for (const std::string& text : arguments.faults) {
      options.faults.push_back(ParseFaultRule(text, FaultRoutes(options.source.get())));
    }
  } catch (const std::invalid_argument& error) {
    std::cerr << "stowra-emulator: --fault: " << error.what() << std::endl;
    return kUsageError;
  }
  return std::nullopt;
}

void DescribeCommandLine(const std::function<void(const CLI::App&)>& visit) {
  EmulatorOptions options;
  Arguments arguments;
  CLI::App app(kHelp, "stowra-emulator");
  AddOptions(app, options, arguments);
  visit(app);
}

}  // namespace stowra_emulator

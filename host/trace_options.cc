// SPDX-License-Identifier: MIT
#include "host/trace_options.h"

#include <CLI/CLI.hpp>

namespace stowra {

void AddTraceOptions(CLI::App& command, TraceOptions& options) {
  command.add_flag("-v,--verbose", options.verbosity,
                   "Print the heads of requests and responses, the ends of transfers and the "
                   "notifications to stderr; -vv prints each step");
  command
      .add_option("--trace", options.file,
                  "Write each step of each transfer to FILE, as lines of JSON")
      ->type_name("FILE");
  command.add_flag("--timing", options.timing,
                   "Draw at the end on stderr where the time of each request went");
  command.add_flag("--show-secrets", options.shows_secrets,
                   "Let --verbose, --trace and --timing show the values of queries and of secret "
                   "headers");
}

}  // namespace stowra

// SPDX-License-Identifier: MIT
// The options that show what the transfers do.

#ifndef HOST_TRACE_OPTIONS_H_
#define HOST_TRACE_OPTIONS_H_

#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace stowra {

struct TraceOptions {
  int verbosity = 0;    // 1: heads, ends and notifications; 2: each step too
  std::string file;     // gets a line of JSON for each step; empty: none
  bool timing = false;  // draw a waterfall at the end
  bool shows_secrets = false;
};

// Adds these options to `command`. Parsing fills `options`, which must outlive `command`.
void AddTraceOptions(CLI::App& command, TraceOptions& options);

}  // namespace stowra

#endif  // HOST_TRACE_OPTIONS_H_

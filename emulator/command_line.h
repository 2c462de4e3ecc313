// SPDX-License-Identifier: MIT
// The program's arguments.

#ifndef EMULATOR_COMMAND_LINE_H_
#define EMULATOR_COMMAND_LINE_H_

#include <functional>
#include <optional>

#include "emulator/emulator_options.h"

namespace CLI {
class App;
}  // namespace CLI

namespace stowra_emulator {

// Reads the arguments into `options`. Returns the exit status if there is nothing to run: after
// --help, --version or, with a reason on standard error, wrong usage.
// Throws a std::exception if a recording cannot be read or written.
std::optional<int> ReadCommandLine(int argc, const char* const* argv, EmulatorOptions& options);

// Shows all options to `visit`, which must not keep them.
void DescribeCommandLine(const std::function<void(const CLI::App&)>& visit);

}  // namespace stowra_emulator

#endif  // EMULATOR_COMMAND_LINE_H_

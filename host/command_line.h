// SPDX-License-Identifier: MIT
// The whole program but main.

#ifndef HOST_COMMAND_LINE_H_
#define HOST_COMMAND_LINE_H_

#include <functional>

#include "host/exit_status.h"

namespace CLI {
class App;
}  // namespace CLI

namespace stowra {

// Parses the command line and runs its command.
ExitStatus RunCommandLine(int argc, const char* const* argv);

// Shows all commands and options to `visit`, which must not keep them.
void DescribeCommandLine(const std::function<void(const CLI::App&)>& visit);

}  // namespace stowra

#endif  // HOST_COMMAND_LINE_H_

// SPDX-License-Identifier: MIT
// The whole program but main.

#ifndef HOST_COMMAND_LINE_H_
#define HOST_COMMAND_LINE_H_

#include "host/exit_status.h"

namespace stowra {

// Parses the command line and runs its command.
ExitStatus RunCommandLine(int argc, const char* const* argv);

}  // namespace stowra

#endif  // HOST_COMMAND_LINE_H_

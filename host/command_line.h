// The whole program but for main.

#ifndef HOST_COMMAND_LINE_H_
#define HOST_COMMAND_LINE_H_

#include "host/exit_status.h"

namespace stowra {

// Reads the command line and runs the command that it asks for.
ExitStatus RunCommandLine(int argc, const char* const* argv);

}  // namespace stowra

#endif  // HOST_COMMAND_LINE_H_

// SPDX-License-Identifier: MIT
// stowra: calls the services from the command line.

#include <csignal>
#include <exception>

#include "host/command_line.h"
#include "host/terminal.h"

int main(int argc, char** argv) {
  try {
    // Makes a write to a closed connection or pipe an error instead of the program's end.
    std::signal(SIGPIPE, SIG_IGN);
    return static_cast<int>(stowra::RunCommandLine(argc, argv));
  } catch (const std::exception& error) {
    stowra::Complain(error.what());
    return static_cast<int>(stowra::ExitStatus::kCannotRun);
  }
}

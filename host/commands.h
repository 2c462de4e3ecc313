// SPDX-License-Identifier: MIT
// The commands. Each has its own source file.

#ifndef HOST_COMMANDS_H_
#define HOST_COMMANDS_H_

#include <functional>

#include "host/exit_status.h"

namespace CLI {
class App;
}  // namespace CLI

namespace stowra {

// The command that the command line asks for, ready to run.
using Task = std::function<ExitStatus()>;

// Each adds its command to `app`. If the parsed command line has that command, `chosen` is set.
void AddUserInfoCommand(CLI::App& app, Task& chosen);
void AddUpdateCommand(CLI::App& app, Task& chosen);
void AddExtensionsCommand(CLI::App& app, Task& chosen);
void AddSearchCommand(CLI::App& app, Task& chosen);
void AddDownloadCommand(CLI::App& app, Task& chosen);
void AddUploadConfigCommand(CLI::App& app, Task& chosen);
void AddUploadCommand(CLI::App& app, Task& chosen);
void AddTraceCommand(CLI::App& app, Task& chosen);
void AddCheckCommand(CLI::App& app, Task& chosen);
void AddDemoCommand(CLI::App& app, Task& chosen);

}  // namespace stowra

#endif  // HOST_COMMANDS_H_

// The commands: each has a source file of its own.

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

// Each adds its command to `app`, whose parsing sets `chosen` when that command is asked for.
void AddUserInfoCommand(CLI::App& app, Task& chosen);
void AddUpdateCommand(CLI::App& app, Task& chosen);
void AddExtensionsCommand(CLI::App& app, Task& chosen);
void AddSearchCommand(CLI::App& app, Task& chosen);
void AddDownloadCommand(CLI::App& app, Task& chosen);
void AddUploadConfigCommand(CLI::App& app, Task& chosen);
void AddUploadCommand(CLI::App& app, Task& chosen);
void AddDemoCommand(CLI::App& app, Task& chosen);

}  // namespace stowra

#endif  // HOST_COMMANDS_H_

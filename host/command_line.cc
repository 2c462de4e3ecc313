// SPDX-License-Identifier: MIT
#include "host/command_line.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "host/commands.h"
#include "host/help_formatter.h"
#include "host/terminal.h"
#include "host/version_text.h"

namespace stowra {

namespace {

constexpr char kDescription[] =
    "Calls the online services through the library, as a host application does.";

constexpr char kExamples[] =
    "Examples:\n"
    "  stowra user-info http://127.0.0.1:8080/user-info\n"
    "  stowra update http://127.0.0.1:8080/update --async --verbose\n"
    "  stowra extensions http://127.0.0.1:8080/extensions --body installed.json --json\n"
    "  stowra search 'http://127.0.0.1:8080/search?q=chair' --all\n"
    "  stowra download 'http://127.0.0.1:8080/download?mid=m-1001&rtyp=k2'\n"
    "  stowra upload http://127.0.0.1:8080/upload-config chair.qmf --subject-id m42\n"
    "  stowra update --help\n";

void SetUp(CLI::App& app, Task& chosen) {
  app.formatter(std::make_shared<HelpFormatter>());
  app.footer(kExamples);
  app.set_version_flag("--version", VersionText, "Print the version of the library and exit");
  app.require_subcommand(0, 1);
  AddUserInfoCommand(app, chosen);
  AddUpdateCommand(app, chosen);
  AddExtensionsCommand(app, chosen);
  AddSearchCommand(app, chosen);
  AddDownloadCommand(app, chosen);
  AddUploadConfigCommand(app, chosen);
  AddUploadCommand(app, chosen);
  AddTraceCommand(app, chosen);
  AddDemoCommand(app, chosen);
}

// "stowra", followed by the command if one was parsed.
std::string NameOf(const CLI::App& app) {
  const auto chosen = app.get_subcommands();
  return chosen.empty() ? app.get_name() : app.get_name() + " " + chosen.back()->get_name();
}

ExitStatus ComplainOfUsage(const CLI::App& app, const std::string& what) {
  Complain(fmt::format("{} (see {} --help)", what, NameOf(app)));
  return ExitStatus::kUsage;
}

}  // namespace

ExitStatus RunCommandLine(int argc, const char* const* argv) {
  CLI::App app(kDescription, "stowra");
  Task chosen;
  SetUp(app, chosen);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    return WriteResult(app.help());
  } catch (const CLI::CallForVersion& version) {
    return WriteResult(std::string(version.what()) + "\n");
  } catch (const CLI::ParseError& error) {
    return ComplainOfUsage(app, error.what());
  }
  return chosen ? chosen() : ComplainOfUsage(app, "a command is needed");
}

void DescribeCommandLine(const std::function<void(const CLI::App&)>& visit) {
  CLI::App app(kDescription, "stowra");
  Task chosen;
  SetUp(app, chosen);
  visit(app);
}

}  // namespace stowra

// SPDX-License-Identifier: MIT
#include "host/command_line.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "host/commands.h"
#include "host/failure_report.h"
#include "host/help_formatter.h"
#include "host/suggestion.h"
#include "host/terminal.h"
#include "host/version_text.h"

namespace stowra {

namespace {

constexpr char kDescription[] =
    "Calls the online services through the library, as a host application does.";

constexpr char kProgramExamples[] =
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
  app.footer(kProgramExamples);
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
  AddCheckCommand(app, chosen);
  AddDemoCommand(app, chosen);
}

// "stowra", followed by the command if one was parsed.
std::string NameOf(const CLI::App& app) {
  const auto chosen = app.get_subcommands();
  return chosen.empty() ? app.get_name() : app.get_name() + " " + chosen.back()->get_name();
}

// What the first argument that nobody takes may stand for.
std::string SuggestionFor(const CLI::App& app) {
  const std::vector<std::string> unknown = app.remaining(true);
  if (unknown.empty()) return {};
  const auto chosen = app.get_subcommands();
  const CLI::App& command = chosen.empty() ? app : *chosen.back();
  std::vector<std::string> candidates;
  if (unknown[0].rfind("--", 0) == 0) {
    for (const CLI::Option* option : command.get_options()) {
      for (const std::string& name : option->get_lnames()) candidates.push_back("--" + name);
    }
  } else if (chosen.empty()) {
    for (const CLI::App* each : app.get_subcommands(nullptr)) {
      candidates.push_back(each->get_name());
    }
  }
  const std::string name = unknown[0].substr(0, unknown[0].find('='));
  const std::string closest = ClosestTo(name, candidates);
  return closest.empty() ? "" : fmt::format("; did you mean {}?", closest);
}

ExitStatus ReportUsage(const CLI::App& app, const std::string& what, bool json) {
  FailureReport failure;
  failure.exit_status = ExitStatus::kUsage;
  failure.reason = "usage";
  failure.message = fmt::format("{} (see {} --help)", what, NameOf(app));
  return Report(failure, json);
}

}  // namespace

ExitStatus RunCommandLine(int argc, const char* const* argv) {
  const std::vector<std::string> arguments(argv + 1, argv + std::max(argc, 1));
  const bool json = std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
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
    return ReportUsage(app, error.what() + SuggestionFor(app), json);
  }
  return chosen ? chosen() : ReportUsage(app, "a command is needed", json);
}

void DescribeCommandLine(const std::function<void(const CLI::App&)>& visit) {
  CLI::App app(kDescription, "stowra");
  Task chosen;
  SetUp(app, chosen);
  visit(app);
}

}  // namespace stowra

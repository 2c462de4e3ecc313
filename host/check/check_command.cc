// SPDX-License-Identifier: MIT
// stowra check: says what the library makes of a response.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "common_stowraapi/platform/internet_data.h"
#include "host/check/check_report.h"
#include "host/check/feed_check.h"
#include "host/check/service_checks.h"
#include "host/check/upload_config_check.h"
#include "host/commands.h"
#include "host/failure_report.h"
#include "host/file_access.h"
#include "host/http_status.h"
#include "host/request_options.h"
#include "host/service_url.h"
#include "host/session.h"
#include "host/terminal.h"

namespace stowra {

using ovrant::internet::InternetData;
using ovrant::utils::ovrant_ustring;

namespace {

constexpr char kCheckExamples[] =
    "Examples:\n"
    "  stowra check feed search.xml --max-qmf-version 8\n"
    "  stowra check update http://127.0.0.1:8080/update --json\n"
    "  curl http://127.0.0.1:8080/user-info | stowra check user-info -\n"
    "\n"
    "Exits with status 0 if everything was kept, and 1 if something was dropped or missing. Lines "
    "with ! tell of a loss, lines with - of what may be missing. An asterisk marks the file that "
    "is offered for download.\n";

struct CheckOptions : RequestOptions {
  std::string kind;
  int max_qmf_version = 0;
};

CheckReport Check(const CheckOptions& options, const std::string& text) {
  if (options.kind == "feed") return CheckFeed(text, options.max_qmf_version);
  if (options.kind == "entry") return CheckEntryDocument(text, options.max_qmf_version);
  if (options.kind == "upload-config") return CheckUploadConfig(text);
  if (options.kind == "user-info") return CheckUserInfo(text);
  return options.kind == "update" ? CheckUpdate(text) : CheckExtensions(text);
}

ExitStatus Explain(const CheckOptions& options, const std::string& text) {
  const CheckReport report = Check(options, text);
  const ExitStatus written = WriteResult(options.json ? ToJson(report) : ToText(report));
  if (written != ExitStatus::kDone) return written;
  return IsWhole(report) ? ExitStatus::kDone : ExitStatus::kCannotRun;
}

ExitStatus ExplainDownload(const CheckOptions& options) {
  const Session session(options);
  InternetData transport{ovrant_ustring(options.url)};
  const bool received = session.Repeat(
      [&transport] { return transport.Download() && transport.status_code() == kHttpOk; });
  if (!received) return session.Fail("");
  return Explain(options, {reinterpret_cast<const char*>(transport.received_data()),
                           transport.received_data_length()});
}

ExitStatus RunCheck(const CheckOptions& options) {
  if (IsWebUrl(options.url)) return ExplainDownload(options);
  std::string text;
  std::string why;
  if (options.url == "-" ? ReadInput(text, why) : ReadFile(options.url, text, why)) {
    return Explain(options, text);
  }
  FailureReport failure;
  failure.exit_status = ExitStatus::kUsage;
  failure.reason = "usage";
  failure.message = fmt::format("{}: {}", options.url, why);
  return Report(failure, options.json);
}

}  // namespace

void AddCheckCommand(CLI::App& app, Task& chosen) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App& command =
      *app.add_subcommand("check", "Say what the library keeps of a response, and why");
  command.footer(kCheckExamples);
  command
      .add_option("KIND", options->kind,
                  "feed, entry, upload-config, user-info, update or extensions")
      ->required()
      ->option_text(" ")
      ->check(CLI::IsMember({"feed", "entry", "upload-config", "user-info", "update", "extensions"})
                  .description(""));
  AddWaitingOptions(command, *options, "SOURCE", "A file, a URL, or - for standard input");
  AddMaxQmfVersion(command, options->max_qmf_version,
                   "Explain the choice of a host that opens .qmf files up to this version");
  command.callback([options, &chosen] { chosen = [options] { return RunCheck(*options); }; });
}

}  // namespace stowra

// SPDX-License-Identifier: MIT
// stowra download: fetches a model's file.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "common_stowraapi/platform/internet_data.h"
#include "host/commands.h"
#include "host/download_name.h"
#include "host/file_access.h"
#include "host/json_values.h"
#include "host/request_options.h"
#include "host/response_headers.h"
#include "host/session.h"
#include "host/table.h"
#include "host/terminal.h"

namespace stowra {

using ovrant::internet::InternetData;
using ovrant::json::Document;
using ovrant::utils::ovrant_ustring;

namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  stowra download 'http://127.0.0.1:8080/download?mid=m-1001&rtyp=k2'\n"
    "  stowra download 'http://127.0.0.1:8080/download?mid=m-1001&rtyp=s7' -o chair.qmf\n";

constexpr int kHttpOk = 200;

// A download is held in memory. The default is 4 GiB, or less where unsigned long is smaller.
constexpr std::uint64_t kFourGibibytes = std::uint64_t{1} << 32;
constexpr unsigned long kMostBytes = std::numeric_limits<unsigned long>::max();
constexpr auto kDefaultMaxBytes =
    static_cast<unsigned long>(std::min<std::uint64_t>(kFourGibibytes, kMostBytes));

struct DownloadOptions : RequestOptions {
  DownloadOptions() { max_bytes = kDefaultMaxBytes; }

  std::string file;  // empty: the server names the file
};

std::string CheckOutput(const std::string& file) {
  if (file.empty()) return "must not be empty";
  return file == "-" ? "'-' does not mean standard output here; use ./- for a file of that name"
                     : "";
}

std::string CheckMaxBytes(const std::string& text) {
  return CheckWholeNumber(text, 1, kMostBytes, "a number of bytes above 0");
}

// Checked before the transfer, which would otherwise be in vain.
bool HasDestination(const DownloadOptions& options) {
  std::string why;
  if (options.file.empty()) {
    if (CanMakeFileIn(".", why)) return true;
    Complain(fmt::format("the current folder: {}", why));
  } else {
    if (CanReplaceFile(options.file, why)) return true;
    Complain(fmt::format("{}: {}", options.file, why));
  }
  return false;
}

std::string ToTable(const std::string& file, std::size_t bytes) {
  Table table(Table::Labels::kFirstColumn);
  table.AddRow({"file", file});
  table.AddRow({"bytes", fmt::format("{}", bytes)});
  return table.ToText(MayColour(stdout));
}

std::string ToJson(const std::string& file, std::size_t bytes) {
  Document document;
  document.AddMember("file", MakeText(document, ovrant_ustring(file.data(), file.size())));
  document.AddMember("bytes", MakeSize(document, bytes));
  return ToLine(document);
}

ExitStatus Keep(const InternetData& transport, const DownloadOptions& options) {
  const bool is_named = !options.file.empty();
  const std::string file =
      is_named ? options.file
               : ChooseFileName(FindHeader(transport.received_headers(), "Content-Disposition"),
                                options.url);
  const std::string_view content(reinterpret_cast<const char*>(transport.received_data()),
                                 transport.received_data_length());
  std::string why;
  if (!WriteFile(file, content, is_named ? Existing::kReplace : Existing::kKeep, why)) {
    const char* const advice = is_named ? "" : " (name another file with --output)";
    Complain(fmt::format("{}: {}{}", file, why, advice));
    return ExitStatus::kCannotRun;
  }
  return WriteResult(options.json ? ToJson(file, content.size()) : ToTable(file, content.size()));
}

ExitStatus Run(const DownloadOptions& options) {
  if (!HasDestination(options)) return ExitStatus::kCannotRun;
  Session session(options);
  session.ShowProgress();
  InternetData transport(ovrant_ustring(options.url.data(), options.url.size()));
  if (!transport.Download() || transport.status_code() != kHttpOk) return session.Fail("");
  return Keep(transport, options);
}

}  // namespace

void AddDownloadCommand(CLI::App& app, Task& chosen) {
  const auto options = std::make_shared<DownloadOptions>();
  CLI::App& command = *app.add_subcommand("download", "Download a model's file");
  command.footer(kExamples);
  AddWaitingOptions(command, *options);
  command
      .add_option("-o,--output", options->file,
                  "Write to FILE, or to the target if FILE is a link, and replace an existing file "
                  "(default: a new file in the current folder, named by the server)")
      ->type_name("FILE")
      ->check(CLI::Validator(CheckOutput, ""));
  command
      .add_option("--max-bytes", options->max_bytes,
                  fmt::format("Fail if the file is larger (default: {})", kDefaultMaxBytes))
      ->type_name("N")
      ->check(CLI::Validator(CheckMaxBytes, ""));
  command.callback([options, &chosen] { chosen = [options] { return Run(*options); }; });
}

}  // namespace stowra

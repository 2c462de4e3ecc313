// SPDX-License-Identifier: MIT
// stowra trace: draws a file that --trace has written.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "host/commands.h"
#include "host/file_access.h"
#include "host/terminal.h"
#include "host/terminal_width.h"
#include "host/trace_file.h"
#include "host/waterfall.h"
#include "host/waterfall_text.h"

namespace stowra {

namespace {

constexpr char kTraceExamples[] =
    "Examples:\n"
    "  stowra search 'http://127.0.0.1:8080/search?q=chair' --all --trace chair.jsonl\n"
    "  stowra trace chair.jsonl\n"
    "  stowra trace chair.jsonl --svg chair.svg\n";

struct TraceCommandOptions {
  std::string file;
  std::string svg;
};

ExitStatus RunTrace(const TraceCommandOptions& options) {
  std::vector<TraceRecord> records;
  std::string why;
  if (!ReadTrace(options.file, records, why)) {
    Complain(fmt::format("{}: {}", options.file, why));
    return ExitStatus::kCannotRun;
  }
  Waterfall waterfall;
  for (const TraceRecord& record : records) waterfall.Add(record);
  if (options.svg.empty()) {
    return WriteResult(ToText(waterfall.Rows(), WidthOf(stdout, kUsualWidth), MayColour(stdout)));
  }
  if (WriteFile(options.svg, ToSvg(waterfall.Rows()), Existing::kReplace, why)) {
    return ExitStatus::kDone;
  }
  Complain(fmt::format("{}: {}", options.svg, why));
  return ExitStatus::kCannotRun;
}

}  // namespace

void AddTraceCommand(CLI::App& app, Task& chosen) {
  const auto options = std::make_shared<TraceCommandOptions>();
  CLI::App& command =
      *app.add_subcommand("trace", "Draw where the time of each request in a trace went");
  command.footer(kTraceExamples);
  command.add_option("FILE", options->file, "A file that --trace has written, or - for stdin")
      ->required()
      ->option_text(" ");
  command.add_option("--svg", options->svg, "Write an SVG picture to OUT instead")
      ->type_name("OUT");
  command.callback([options, &chosen] { chosen = [options] { return RunTrace(*options); }; });
}

}  // namespace stowra

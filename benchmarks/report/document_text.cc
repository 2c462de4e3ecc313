#include <fmt/format.h>

#include <algorithm>

#include "benchmarks/report/figure_text.h"
#include "benchmarks/report/markdown_table.h"
#include "benchmarks/report/report.h"

namespace stowra_bench {
namespace {

using Align = MarkdownTable::Align;

constexpr const char* kHowMeasured =
    R"(Written by `./run bench`, which installs the libraries to compare with, builds the release preset,
runs the programs under `benchmarks/` and judges their results by `benchmarks/rows.json`.

- The library is measured as the shared objects that are shipped. Both sides of a row do the same
  work in the same program, on the same bytes, which a generator makes; inputs are made before the
  clock starts, results are destroyed before it stops.
- A figure is the median of the rounds. In each round every benchmark runs once, in a process of its
  own: what else the machine does meets both sides, and no benchmark works in the heap that another
  has left behind. Time is real time.
- The limit is the parser, libcurl or the memory under the library, used as barely as possible.
  RapidJSON is compiled as it is packaged, without its SIMD switch. A peer is what else a host could
  use for the same, by its fastest way; for XML by its events, and by the tree that it builds, which
  is what ContentQuery reads from, too.
- Transfers go to an nginx on this machine, which shares one processor with the program, so that what
  counts is the work of both and not how the system wakes processors.
- Instructions are counted by callgrind, in a run of the case after a first one. They depend on the
  processor's kind, compiler and libraries; from run to run they differ by less than 0.5 %, mostly
  where a parser draws hash keys at random. `./run check` counts them again and fails when a case
  needs 5 % more than `benchmarks/instructions/counts.txt` says.

A ratio with "x" is our time over the other's (less is better); "times as fast" is the other's time
over ours (more is better).
)";

std::string TextOf(const std::optional<double>& median, const Row& row) {
  return median ? MedianText(*median, row) : "";
}

std::string ReachedText(const Verdict& verdict) {
  if (!verdict.is_measured()) return "not measured";
  return verdict.is_reached() ? "yes" : "**no**";
}

std::string FigureOf(const Verdict& verdict) {
  return verdict.is_measured() ? FigureText(verdict) : "";
}

std::string EnvironmentText(const Report& report) {
  const Environment& environment = report.environment;
  std::string text =
      fmt::format("{}. {}, {} processors, {}. {}, {}.\n", report.measurements.date().substr(0, 10),
                  environment.processor, report.measurements.processors(), environment.system,
                  environment.compiler, environment.flags);
  const char* separator = "";
  for (const auto& [name, version] : environment.libraries) {
    text += separator + name + ' ' + version;
    separator = ", ";
  }
  return text + ".\n";
}

std::string InstructionTable(const Report& report) {
  MarkdownTable table({{"case"}, {"instructions", Align::kRight}});
  report.measurements.ForEach(
      [&](const std::string& name, const std::string& measure, const Measurement& measurement) {
        if (measure == "instructions") table.AddRow({name, CountText(measurement.median)});
      });
  return table.ToText();
}

std::string FailureList(const Report& report) {
  std::string text;
  for (const auto& [name, message] : report.measurements.failures()) {
    text += fmt::format("- `{}` failed: {}\n", name, message);
  }
  return text.empty() ? text : text + '\n';
}

}  // namespace

std::string ComparisonTable(const Report& report) {
  MarkdownTable table({{"what"},
                       {"against"},
                       {"ours", Align::kRight},
                       {"other", Align::kRight},
                       {"ratio", Align::kRight},
                       {"reach", Align::kRight},
                       {"reached"}});
  for (const Verdict& verdict : report.comparisons) {
    const Row& row = verdict.row;
    table.AddRow({row.what, row.against_text, TextOf(verdict.ours, row), TextOf(verdict.other, row),
                  FigureOf(verdict), BoundText(row), ReachedText(verdict)});
  }
  return table.ToText();
}

std::string GrowthTable(const Report& report) {
  MarkdownTable table({{"ten times the work"},
                       {"once", Align::kRight},
                       {"ten times", Align::kRight},
                       {"growth", Align::kRight},
                       {"reach", Align::kRight},
                       {"reached"}});
  for (const Verdict& verdict : report.growth) {
    const Row& row = verdict.row;
    table.AddRow({row.what, TextOf(verdict.other, row), TextOf(verdict.ours, row),
                  FigureOf(verdict), BoundText(row), ReachedText(verdict)});
  }
  return table.ToText();
}

std::string DocumentText(const Report& report) {
  std::string text = "# Performance\n\n";
  text += "![Ratios of all rows](performance.svg)\n\n";
  text += EnvironmentText(report) + '\n';
  text += FailureList(report);
  text += "## Against the limits and the peers\n\n" + ComparisonTable(report) + '\n';
  text += "## Growth\n\n" + GrowthTable(report) + '\n';
  text += "## Instructions of small cases\n\n" + InstructionTable(report) + '\n';
  text += std::string("## How it is measured\n\n") + kHowMeasured;
  return text;
}

}  // namespace stowra_bench

// SPDX-License-Identifier: MIT
// stowra-bench-report: judges the results of the benchmarks and writes the report.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmarks/report/report.h"

namespace stowra_bench {
namespace {

struct Options {
  std::string rows;
  std::string environment;
  std::string counts;
  std::string commit;
  std::string processor;
  std::string document;
  std::string summary;
  std::string plot_data;
  std::vector<std::string> results;
};

// Returns `read` of the file. Adds the path to an exception's text.
template <typename Read>
auto ReadFile(const std::string& path, const Read& read) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  try {
    return read(file);
  } catch (const std::exception& error) {
    throw std::runtime_error(path + ": " + error.what());
  }
}

void Write(const std::string& path, const std::string& text) {
  std::ofstream file(path);
  file << text << std::flush;
  if (!file) throw std::runtime_error("cannot write " + path);
}

Report MakeReport(const Options& options) {
  Report report;
  for (const std::string& path : options.results) {
    ReadFile(path, [&](std::istream& file) { report.measurements.AddBenchmarks(file); });
  }
  ReadFile(options.counts, [&](std::istream& file) { report.measurements.AddCounts(file); });
  report.environment = ReadFile(options.environment, ReadEnvironment);
  report.environment.commit = options.commit;
  report.environment.processor = options.processor;
  const Rows rows = ReadFile(options.rows, ReadRows);
  report.comparisons = JudgeAll(rows.comparisons, report.measurements);
  report.growth = JudgeAll(rows.growth, report.measurements);
  return report;
}

bool IsComplete(const Report& report) {
  const auto is_measured = [](const Verdict& verdict) { return verdict.is_measured(); };
  return report.measurements.failures().empty() &&
         std::all_of(report.comparisons.begin(), report.comparisons.end(), is_measured) &&
         std::all_of(report.growth.begin(), report.growth.end(), is_measured);
}

int Run(int argc, char** argv) {
  Options options;
  CLI::App app(
      "Judges benchmark results and writes the report. Exits with 1 if a row is not measured.");
  app.add_option("--rows", options.rows, "the goals")->required();
  app.add_option("--environment", options.environment, "the build's environment.json")->required();
  app.add_option("--counts", options.counts, "instruction counts")->required();
  app.add_option("--commit", options.commit, "the commit that was measured")->required();
  app.add_option("--processor", options.processor, "the processor's name")->required();
  app.add_option("--document", options.document, "the Markdown file to write")->required();
  app.add_option("--summary", options.summary, "the JSON file to write")->required();
  app.add_option("--plot-data", options.plot_data, "the data file to write")->required();
  app.add_option("results", options.results, "output of the benchmark programs")->required();
  CLI11_PARSE(app, argc, argv);

  const Report report = MakeReport(options);
  Write(options.document, DocumentText(report));
  Write(options.summary, SummaryText(report));
  Write(options.plot_data, PlotData(report));
  std::cout << ComparisonTable(report) << "\n" << GrowthTable(report);
  return IsComplete(report) ? 0 : 1;
}

}  // namespace
}  // namespace stowra_bench

int main(int argc, char** argv) {
  try {
    return stowra_bench::Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "stowra-bench-report: %s\n", error.what());
    return 2;
  }
}

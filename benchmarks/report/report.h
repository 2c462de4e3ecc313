// SPDX-License-Identifier: MIT
// The texts that are written about the measurements.

#ifndef BENCHMARKS_REPORT_REPORT_H_
#define BENCHMARKS_REPORT_REPORT_H_

#include <string>
#include <vector>

#include "benchmarks/report/environment.h"
#include "benchmarks/report/measurements.h"
#include "benchmarks/report/verdict.h"

namespace stowra_bench {

struct Report {
  Environment environment;
  Measurements measurements;
  std::vector<Verdict> comparisons;
  std::vector<Verdict> growth;
};

// The rows as Markdown tables.
std::string ComparisonTable(const Report& report);
std::string GrowthTable(const Report& report);

// The whole document, in Markdown.
std::string DocumentText(const Report& report);

// A JSON document with one median on each line, and the environment.
std::string SummaryText(const Report& report);

// The input of plot.gp: the comparisons, two empty lines and the growth. Has one line for each
// measured row with an `other`. Tabs separate the fields:
//
// - position
// - ratio (ours / other) and its bound
// - kind (0 limit, 1 peer)
// - reached (0 or 1)
// - what, against and figure
std::string PlotData(const Report& report);

}  // namespace stowra_bench

#endif  // BENCHMARKS_REPORT_REPORT_H_

// What is written about the measurements.

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

// Every median, one on a line, and where it comes from, in JSON.
std::string SummaryText(const Report& report);

// What plot.gp draws: the comparisons, two empty lines and the growth. A line for each row that
// was measured and has another measurement, with the fields position, ratio (ours / other), bound
// of the ratio, kind (0 limit, 1 peer), reached (0 or 1), what, against and figure, separated by
// tabs.
std::string PlotData(const Report& report);

}  // namespace stowra_bench

#endif  // BENCHMARKS_REPORT_REPORT_H_

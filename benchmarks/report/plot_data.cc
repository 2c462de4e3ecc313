// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include "benchmarks/report/figure_text.h"
#include "benchmarks/report/report.h"

namespace stowra_bench {
namespace {

bool IsDrawn(const Verdict& verdict) { return verdict.is_measured() && !verdict.row.other.empty(); }

// The bound of ours / other, also for a row that bounds other / ours.
double BoundOf(const Row& row) { return row.is_times_as_fast ? 1 / row.bound : row.bound; }

int KindOf(const Row& row) { return row.against == Row::Against::kPeer ? 1 : 0; }

// Writes `what` once for rows that follow each other.
std::string Block(const std::vector<Verdict>& verdicts) {
  std::string text;
  std::string said;
  std::size_t position = 0;
  for (const Verdict& verdict : verdicts) {
    if (!IsDrawn(verdict)) continue;
    const Row& row = verdict.row;
    text += fmt::format("{}\t{:.4f}\t{:.4f}\t{}\t{}\t{}\t{}\t{}\n", ++position,
                        *verdict.ours / *verdict.other, BoundOf(row), KindOf(row),
                        verdict.is_reached() ? 1 : 0, row.what == said ? "" : row.what,
                        row.against_text, FigureText(verdict));
    said = row.what;
  }
  return text;
}

}  // namespace

std::string PlotData(const Report& report) {
  return Block(report.comparisons) + "\n\n" + Block(report.growth);
}

}  // namespace stowra_bench

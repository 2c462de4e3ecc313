// SPDX-License-Identifier: MIT
// Judges whether a row is reached.

#ifndef BENCHMARKS_REPORT_VERDICT_H_
#define BENCHMARKS_REPORT_VERDICT_H_

#include <optional>
#include <vector>

#include "benchmarks/report/measurements.h"
#include "benchmarks/report/row.h"

namespace stowra_bench {

struct Verdict {
  Row row;
  std::optional<double> ours;   // median, empty if not measured
  std::optional<double> other;  // the same, also empty in a row without `other`

  bool is_measured() const;

  // The figure that the row's bound limits. Requires is_measured().
  double Figure() const;

  bool is_reached() const;
};

Verdict Judge(const Row& row, const Measurements& measurements);
std::vector<Verdict> JudgeAll(const std::vector<Row>& rows, const Measurements& measurements);

}  // namespace stowra_bench

#endif  // BENCHMARKS_REPORT_VERDICT_H_

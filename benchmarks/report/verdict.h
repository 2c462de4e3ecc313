// Whether a row is reached.

#ifndef BENCHMARKS_REPORT_VERDICT_H_
#define BENCHMARKS_REPORT_VERDICT_H_

#include <optional>
#include <vector>

#include "benchmarks/report/measurements.h"
#include "benchmarks/report/row.h"

namespace stowra_bench {

struct Verdict {
  Row row;
  std::optional<double> ours;   // medians; empty where nothing was measured
  std::optional<double> other;  // likewise, and in a row that has no other

  bool is_measured() const;

  // What the row's bound is a bound of. Requires is_measured().
  double Figure() const;

  bool is_reached() const;
};

Verdict Judge(const Row& row, const Measurements& measurements);
std::vector<Verdict> JudgeAll(const std::vector<Row>& rows, const Measurements& measurements);

}  // namespace stowra_bench

#endif  // BENCHMARKS_REPORT_VERDICT_H_

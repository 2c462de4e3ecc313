// SPDX-License-Identifier: MIT
#include "benchmarks/report/verdict.h"

namespace stowra_bench {
namespace {

std::optional<double> MedianOf(const std::string& name, const Row& row,
                               const Measurements& measurements) {
  const std::optional<Measurement> found = measurements.Find(name, row.measure);
  return found ? std::optional<double>(found->median) : std::nullopt;
}

}  // namespace

bool Verdict::is_measured() const { return ours && (other || row.other.empty()); }

double Verdict::Figure() const {
  if (row.other.empty()) return *ours;
  return row.is_times_as_fast ? *other / *ours : *ours / *other;
}

bool Verdict::is_reached() const {
  if (!is_measured()) return false;
  return row.is_times_as_fast ? Figure() >= row.bound : Figure() <= row.bound;
}

Verdict Judge(const Row& row, const Measurements& measurements) {
  Verdict verdict;
  verdict.row = row;
  verdict.ours = MedianOf(row.ours, row, measurements);
  if (!row.other.empty()) verdict.other = MedianOf(row.other, row, measurements);
  return verdict;
}

std::vector<Verdict> JudgeAll(const std::vector<Row>& rows, const Measurements& measurements) {
  std::vector<Verdict> verdicts;
  for (const Row& row : rows) verdicts.push_back(Judge(row, measurements));
  return verdicts;
}

}  // namespace stowra_bench

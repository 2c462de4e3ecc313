// SPDX-License-Identifier: MIT
#include "benchmarks/report/figure_text.h"

#include <fmt/format.h>

#include <cmath>

namespace stowra_bench {
namespace {

// Three digits without an exponent.
std::string ThreeDigits(double value) {
  if (std::abs(value) >= 99.95) return fmt::format("{:.0f}", value);
  if (std::abs(value) >= 9.995) return fmt::format("{:.1f}", value);
  return fmt::format("{:.2f}", value);
}

// Shows more digits than a median deserves. A ratio just beyond its bound must not look equal to
// it.
std::string RatioText(double ratio) {
  return ratio < 2 ? fmt::format("{:.3f}", ratio) : fmt::format("{:.2f}", ratio);
}

std::string WithKind(const std::string& number, const Row& row) {
  if (row.other.empty()) return number + ' ' + row.unit;
  return row.is_times_as_fast ? number + " times as fast" : number + 'x';
}

}  // namespace

std::string TimeText(double nanoseconds) {
  if (nanoseconds < 999.5) return ThreeDigits(nanoseconds) + " ns";
  if (nanoseconds < 999.5e3) return ThreeDigits(nanoseconds / 1e3) + " µs";
  if (nanoseconds < 999.5e6) return ThreeDigits(nanoseconds / 1e6) + " ms";
  return ThreeDigits(nanoseconds / 1e9) + " s";
}

std::string CountText(double count) {
  std::string text = fmt::format("{:.0f}", count);
  for (std::size_t i = text.size(); i > 3; i -= 3) text.insert(i - 3, ",");
  return text;
}

std::string MedianText(double median, const Row& row) {
  if (row.measure == "time") return TimeText(median);
  if (row.measure == "instructions") return CountText(median);
  return ThreeDigits(median) + (row.unit.empty() ? "" : ' ' + row.unit);
}

std::string FigureText(const Verdict& verdict) {
  const double figure = verdict.Figure();
  const bool is_ratio = !verdict.row.other.empty();
  return WithKind(is_ratio ? RatioText(figure) : ThreeDigits(figure), verdict.row);
}

std::string BoundText(const Row& row) {
  return (row.is_times_as_fast ? "≥ " : "≤ ") + WithKind(fmt::format("{:g}", row.bound), row);
}

}  // namespace stowra_bench

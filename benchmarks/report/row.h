// SPDX-License-Identifier: MIT
// The goals of the library, as benchmarks/rows.json lists them.

#ifndef BENCHMARKS_REPORT_ROW_H_
#define BENCHMARKS_REPORT_ROW_H_

#include <istream>
#include <string>
#include <vector>

namespace stowra_bench {

// Compares two measurements, or one measurement with a bound.
struct Row {
  enum class Against { kLimit, kPeer };

  std::string id;
  std::string what;
  std::string against_text;  // may be empty
  Against against = Against::kLimit;
  std::string ours;   // name of a measurement
  std::string other;  // the same, or empty if `bound` limits `ours` itself
  std::string measure;
  std::string unit;  // of a row without `other`

  // If true, other / ours must be at least `bound`. Otherwise ours / other must be at most `bound`.
  bool is_times_as_fast = false;
  double bound = 0;

  std::string
      because;  // why the bound is what it is, or why the row does not reach it; may be empty
};

struct Rows {
  std::vector<Row> comparisons;
  std::vector<Row> growth;  // ten times the work over the work
};

// Reads a JSON document. Throws std::runtime_error that names an incomplete or contradictory row.
// Throws another std::exception for another document.
Rows ReadRows(std::istream& file);

}  // namespace stowra_bench

#endif  // BENCHMARKS_REPORT_ROW_H_

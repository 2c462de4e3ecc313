// What the library is to reach, as listed in benchmarks/rows.json.

#ifndef BENCHMARKS_REPORT_ROW_H_
#define BENCHMARKS_REPORT_ROW_H_

#include <istream>
#include <string>
#include <vector>

namespace stowra_bench {

// One comparison of two measurements, or of one with a bound.
struct Row {
  enum class Against { kLimit, kPeer };

  std::string id;
  std::string what;
  std::string against_text;  // may be empty
  Against against = Against::kLimit;
  std::string ours;   // name of a measurement
  std::string other;  // likewise; empty where `ours` itself is bounded
  std::string measure;
  std::string unit;               // of a row without `other`
  bool is_times_as_fast = false;  // the ratio is other / ours and must reach `bound`; else ours /
                                  // other, which must not exceed it
  double bound = 0;
};

struct Rows {
  std::vector<Row> comparisons;
  std::vector<Row> growth;  // ten times the work over the work
};

// Reads a JSON document. Throws std::runtime_error that names the row which is incomplete or
// contradicts itself, and another std::exception for what is no such document.
Rows ReadRows(std::istream& file);

}  // namespace stowra_bench

#endif  // BENCHMARKS_REPORT_ROW_H_

// SPDX-License-Identifier: MIT
// The results of the benchmark programs.

#ifndef BENCHMARKS_REPORT_MEASUREMENTS_H_
#define BENCHMARKS_REPORT_MEASUREMENTS_H_

#include <cstddef>
#include <functional>
#include <istream>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace stowra_bench {

// The middle value, or the mean of the middle two. Requires at least one value.
double Median(std::vector<double> values);

// A benchmark's name without the parts that name run options, such as "/real_time".
std::string PlainName(const std::string& name);

struct Measurement {
  double median = 0;
  std::size_t repetitions = 0;
};

// Measurements by the name of their benchmark or case. The measures are "time" (nanoseconds),
// "instructions" and "counter:NAME".
class Measurements {
 public:
  // Adds one program's output, which is JSON of Google Benchmark. Uses each repetition and skips
  // aggregates. Throws a std::exception for another document.
  void AddBenchmarks(std::istream& output);

  // Adds lines of a case, white space and its number of instructions. Skips empty lines and lines
  // that begin with '#'. Throws std::runtime_error for any other line.
  void AddCounts(std::istream& lines);

  std::optional<Measurement> Find(const std::string& name, const std::string& measure) const;

  // Calls `visit` with name, measure and measurement, sorted by name.
  void ForEach(const std::function<void(const std::string&, const std::string&,
                                        const Measurement&)>& visit) const;

  // The ISO 8601 time of the first program's run, and the number of processors.
  const std::string& date() const { return date_; }
  int processors() const { return processors_; }

  // The benchmarks that reported an error, with the error text.
  const std::map<std::string, std::string>& failures() const { return failures_; }

 private:
  using Key = std::pair<std::string, std::string>;

  std::map<Key, std::vector<double>> samples_;
  std::map<std::string, std::string> failures_;
  std::string date_;
  int processors_ = 0;
};

}  // namespace stowra_bench

#endif  // BENCHMARKS_REPORT_MEASUREMENTS_H_

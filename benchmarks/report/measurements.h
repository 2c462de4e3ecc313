// What was measured.

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

// The middle one, or the mean of the middle two; requires at least one.
double Median(std::vector<double> values);

// The name of a benchmark without what only says how it was run ("/real_time", "/iterations:1").
std::string PlainName(const std::string& name);

struct Measurement {
  double median = 0;
  std::size_t repetitions = 0;
};

// Measurements of the kinds "time" (nanoseconds), "instructions" and "counter:NAME" by the names of
// their benchmarks or cases.
class Measurements {
 public:
  // One program's output, as Google Benchmark writes it in JSON. Each repetition counts; its
  // aggregates are passed over. Throws a std::exception for another document.
  void AddBenchmarks(std::istream& output);

  // Lines of a case, white space and its number of instructions; those that begin with '#' are
  // passed over. Throws std::runtime_error for any other line.
  void AddCounts(std::istream& lines);

  std::optional<Measurement> Find(const std::string& name, const std::string& measure) const;

  // Calls `visit` with name, measure and measurement, in the order of the names.
  void ForEach(const std::function<void(const std::string&, const std::string&,
                                        const Measurement&)>& visit) const;

  // When the first of the programs ran, as an ISO 8601 time, and on how many processors.
  const std::string& date() const { return date_; }
  int processors() const { return processors_; }

  // Benchmarks that reported an error, with its text.
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

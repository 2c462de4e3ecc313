// SPDX-License-Identifier: MIT
#include "benchmarks/report/measurements.h"

#include <gtest/gtest.h>

#include <exception>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace stowra_test {
namespace {

using stowra_bench::Measurements;
using stowra_bench::Median;
using stowra_bench::PlainName;

// A run as a benchmark program writes it. `more` is further members, each after a comma.
std::string RunOf(const std::string& name, const std::string& time, const std::string& unit,
                  const std::string& more = "") {
  return R"({"name": ")" + name + R"(", "run_name": ")" + name + R"(", "run_type": "iteration",)" +
         R"("iterations": 10, "repetition_index": 0, "threads": 1, "real_time": )" + time +
         R"(, "cpu_time": 1.0, "time_unit": ")" + unit + '"' + more + '}';
}

Measurements MeasuredFrom(const std::vector<std::string>& runs) {
  std::string list;
  for (const std::string& run : runs) list += (list.empty() ? "" : ",") + run;
  std::istringstream output(R"({"context": {"date": "2026-03-14T09:26:53+00:00", "num_cpus": 2},)"
                            R"("benchmarks": [)" +
                            list + "]}");
  Measurements measurements;
  measurements.AddBenchmarks(output);
  return measurements;
}

TEST(MedianTest, IsMiddleValueInAnyOrder) {
  EXPECT_EQ(Median({7}), 7);
  EXPECT_EQ(Median({9, 1, 2}), 2);
  EXPECT_EQ(Median({100, 1, 3, 2}), 2.5);
}

TEST(PlainNameTest, OmitsRunOptions) {
  EXPECT_EQ(PlainName("Load/stowra/200/real_time"), "Load/stowra/200");
  EXPECT_EQ(PlainName("Load/stowra/200/iterations:1/real_time"), "Load/stowra/200");
  EXPECT_EQ(PlainName("Load/stowra/200/min_time:0.500/manual_time"), "Load/stowra/200");
  EXPECT_EQ(PlainName("Load"), "Load");
}

TEST(MeasurementsTest, TakesMedianOfRepetitionsInNanoseconds) {
  const Measurements measured =
      MeasuredFrom({RunOf("A/real_time", "3.0", "us"), RunOf("A/real_time", "1", "us"),
                    RunOf("A/real_time", "2e1", "us"), RunOf("B", "2", "ms"), RunOf("C", "5", "ns"),
                    RunOf("D", "1", "s")});
  EXPECT_EQ(measured.Find("A", "time")->median, 3000);
  EXPECT_EQ(measured.Find("A", "time")->repetitions, 3U);
  EXPECT_EQ(measured.Find("B", "time")->median, 2e6);
  EXPECT_EQ(measured.Find("C", "time")->median, 5);
  EXPECT_EQ(measured.Find("D", "time")->median, 1e9);
  EXPECT_FALSE(measured.Find("E", "time").has_value());
  EXPECT_FALSE(measured.Find("A", "instructions").has_value());
}

TEST(MeasurementsTest, KnowsDateAndNumberOfProcessors) {
  const Measurements measured = MeasuredFrom({});
  EXPECT_EQ(measured.date(), "2026-03-14T09:26:53+00:00");
  EXPECT_EQ(measured.processors(), 2);
}

TEST(MeasurementsTest, SkipsAggregates) {
  const std::string mean = RunOf("A", "1000", "ns", R"(, "run_type": "aggregate")");
  EXPECT_EQ(MeasuredFrom({RunOf("A", "1", "ns"), mean}).Find("A", "time")->median, 1);
}

TEST(MeasurementsTest, KeepsCountersButNotRunDescription) {
  const Measurements measured = MeasuredFrom({RunOf("A", "1", "ns", R"(, "peak_mib": 12.5)")});
  EXPECT_EQ(measured.Find("A", "counter:peak_mib")->median, 12.5);
  EXPECT_FALSE(measured.Find("A", "counter:iterations").has_value());
  EXPECT_FALSE(measured.Find("A", "counter:threads").has_value());
}

TEST(MeasurementsTest, OmitsBenchmarkThatFailedOnce) {
  const Measurements measured = MeasuredFrom(
      {RunOf("A", "1", "ns"),
       RunOf("A", "0", "ns", R"(, "error_occurred": true, "error_message": "not loaded")")});
  EXPECT_FALSE(measured.Find("A", "time").has_value());
  EXPECT_EQ(measured.failures().at("A"), "not loaded");
}

TEST(MeasurementsTest, RejectsMalformedBenchmarkOutput) {
  EXPECT_THROW(MeasuredFrom({RunOf("A", "1", "h")}), std::exception);
  EXPECT_THROW(MeasuredFrom({"{"}), std::exception);
  EXPECT_THROW(MeasuredFrom({R"({"name": "A"})"}), std::exception);
}

TEST(MeasurementsTest, ReadsInstructionCounts) {
  std::istringstream counts("# a remark\n\nLoad/stowra/200 703698\nLoad/expat/12   5\n");
  Measurements measured;
  measured.AddCounts(counts);
  EXPECT_EQ(measured.Find("Load/stowra/200", "instructions")->median, 703698);
  EXPECT_EQ(measured.Find("Load/expat/12", "instructions")->median, 5);
}

TEST(MeasurementsTest, RejectsMalformedCountLine) {
  for (const char* line : {"Load/stowra/200", "Load many", "Load 5 6"}) {
    std::istringstream counts(line);
    EXPECT_THROW(Measurements().AddCounts(counts), std::runtime_error) << line;
  }
}

}  // namespace
}  // namespace stowra_test

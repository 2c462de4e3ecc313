// SPDX-License-Identifier: MIT
#include "benchmarks/report/report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "benchmarks/report/markdown_table.h"

namespace stowra_test {
namespace {

using stowra_bench::MarkdownTable;
using stowra_bench::Report;
using stowra_bench::Row;
using ::testing::HasSubstr;
using ::testing::Not;

Row RowOf(const std::string& what, const std::string& against, const std::string& ours,
          const std::string& other, double bound) {
  Row row;
  row.id = what + against;
  row.what = what;
  row.against_text = against;
  row.ours = ours;
  row.other = other;
  row.measure = "instructions";
  row.bound = bound;
  return row;
}

Report MakeReport() {
  Report report;
  std::istringstream counts("slow 2000\nfast 1000\ntenfold 9000");
  report.measurements.AddCounts(counts);
  std::istringstream output(
      R"({"context": {"date": "2026-03-14T09:26:53", "num_cpus": 2}, "benchmarks": []})");
  report.measurements.AddBenchmarks(output);
  Row peer = RowOf("loading", "peer", "fast", "slow", 2);
  peer.is_times_as_fast = true;
  peer.against = Row::Against::kPeer;
  report.comparisons = JudgeAll({RowOf("loading", "parser", "slow", "fast", 1.5), peer,
                                 RowOf("sending", "nothing", "fast", "absent", 1)},
                                report.measurements);
  report.growth = JudgeAll({RowOf("ten times", "", "tenfold", "fast", 11)}, report.measurements);
  report.environment.commit = "0123abc";
  report.environment.processor = "Some processor";
  report.environment.libraries = {{"expat", "2.5.0"}};
  return report;
}

TEST(MarkdownTableTest, PadsColumnsByCharactersNotBytes) {
  MarkdownTable table({{"what"}, {"time", MarkdownTable::Align::kRight}});
  table.AddRow({"a", "1 µs"});
  table.AddRow({"longer", "10 ms"});
  EXPECT_EQ(table.ToText(),
            "| what   |  time |\n"
            "|--------|------:|\n"
            "| a      |  1 µs |\n"
            "| longer | 10 ms |\n");
}

TEST(ReportTest, TellsWhetherEachRowIsReached) {
  const std::string table = ComparisonTable(MakeReport());
  EXPECT_THAT(table, HasSubstr("| loading | parser  | 2,000 | 1,000 |              2.00x |"));
  EXPECT_THAT(table, HasSubstr("≤ 1.5x | **no**       |"));
  EXPECT_THAT(table, HasSubstr("2.00 times as fast | ≥ 2 times as fast | yes"));
  EXPECT_THAT(table, HasSubstr("| not measured |"));
}

TEST(ReportTest, DocumentHasMachineTablesAndPlot) {
  const std::string document = DocumentText(MakeReport());
  for (const char* part : {"2026-03-14, commit 0123abc. ", "Some processor", "expat 2.5.0",
                           "performance.svg", "|  9.00x | ≤ 11x |", "| tenfold |"}) {
    EXPECT_THAT(document, HasSubstr(part));
  }
}

TEST(ReportTest, DocumentSaysWhyOrThatNobodyHasSaid) {
  Report report = MakeReport();
  const std::string unexplained = "- loading, against parser: not reached, and nobody has said why";
  EXPECT_THAT(DocumentText(report), HasSubstr(unexplained));
  EXPECT_THAT(DocumentText(report), Not(HasSubstr("against peer: ")));
  report.comparisons[0].row.because = "it does more.";
  EXPECT_THAT(DocumentText(report), HasSubstr("- loading, against parser: it does more.\n"));
  EXPECT_THAT(DocumentText(report), Not(HasSubstr(unexplained)));
}

TEST(ReportTest, DocumentNamesFailedBenchmarks) {
  Report report = MakeReport();
  EXPECT_THAT(DocumentText(report), Not(HasSubstr("failed: ")));
  std::istringstream output(R"({"benchmarks": [
      {"run_name": "Load/x", "error_occurred": true, "error_message": "not loaded"}]})");
  report.measurements.AddBenchmarks(output);
  EXPECT_THAT(DocumentText(report), HasSubstr("`Load/x` failed: not loaded"));
}

TEST(ReportTest, SummaryIsJsonWithOneMedianPerLine) {
  EXPECT_EQ(SummaryText(MakeReport()),
            R"({
"context": {"date":"2026-03-14T09:26:53","commit":"0123abc","processor":"Some processor","processors":2,)"
            R"("system":"","compiler":"","flags":"","libraries":{"expat":"2.5.0"}},
"measurements": [
{"name":"fast","measure":"instructions","median":1000.0,"unit":"instructions","repetitions":1},
{"name":"slow","measure":"instructions","median":2000.0,"unit":"instructions","repetitions":1},
{"name":"tenfold","measure":"instructions","median":9000.0,"unit":"instructions","repetitions":1}
]
}
)");
}

TEST(ReportTest, PlotShowsRatiosAsOursOverOther) {
  EXPECT_EQ(PlotData(MakeReport()),
            "1\t2.0000\t1.5000\t0\t0\tloading\tparser\t2.00x\n"
            "2\t0.5000\t0.5000\t1\t1\t\tpeer\t2.00 times as fast\n"
            "\n\n"
            "1\t9.0000\t11.0000\t0\t1\tten times\t\t9.00x\n");
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include "benchmarks/report/verdict.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "benchmarks/report/figure_text.h"

namespace stowra_test {
namespace {

using namespace stowra_bench;  // NOLINT(google-build-using-namespace)

// Uses instructions, because their input format is the shortest.
Measurements Counted(const std::string& lines) {
  std::istringstream counts(lines);
  Measurements measured;
  measured.AddCounts(counts);
  return measured;
}

Row RowOf(bool is_times_as_fast, double bound) {
  Row row;
  row.ours = "ours";
  row.other = "other";
  row.measure = "instructions";
  row.is_times_as_fast = is_times_as_fast;
  row.bound = bound;
  return row;
}

TEST(VerdictTest, RatioIsReachedUpToBound) {
  const Row row = RowOf(false, 1.5);
  EXPECT_TRUE(Judge(row, Counted("ours 15\nother 10")).is_reached());
  EXPECT_FALSE(Judge(row, Counted("ours 1501\nother 1000")).is_reached());
  EXPECT_EQ(Judge(row, Counted("ours 15\nother 10")).Figure(), 1.5);
}

TEST(VerdictTest, TimesAsFastIsReachedFromBound) {
  const Row row = RowOf(true, 2);
  EXPECT_TRUE(Judge(row, Counted("ours 10\nother 20")).is_reached());
  EXPECT_FALSE(Judge(row, Counted("ours 1000\nother 1999")).is_reached());
  EXPECT_EQ(Judge(row, Counted("ours 10\nother 25")).Figure(), 2.5);
}

TEST(VerdictTest, ValueWithoutOtherIsReachedUpToBound) {
  Row row = RowOf(false, 32);
  row.other.clear();
  EXPECT_TRUE(Judge(row, Counted("ours 32")).is_reached());
  EXPECT_FALSE(Judge(row, Counted("ours 33")).is_reached());
}

TEST(VerdictTest, UnmeasuredRowIsNotReached) {
  const Row row = RowOf(false, 1.5);
  for (const char* counts : {"ours 1", "other 1", "another 1"}) {
    const Verdict verdict = Judge(row, Counted(counts));
    EXPECT_FALSE(verdict.is_measured()) << counts;
    EXPECT_FALSE(verdict.is_reached()) << counts;
  }
}

TEST(FigureTextTest, TimesHaveThreeDigitsAndFittingUnit) {
  EXPECT_EQ(TimeText(3.14159), "3.14 ns");
  EXPECT_EQ(TimeText(999.4), "999 ns");
  EXPECT_EQ(TimeText(999.6), "1.00 µs");
  EXPECT_EQ(TimeText(12345), "12.3 µs");
  EXPECT_EQ(TimeText(28456789), "28.5 ms");
  EXPECT_EQ(TimeText(9.996e6), "10.0 ms");
  EXPECT_EQ(TimeText(1.5e9), "1.50 s");
}

TEST(FigureTextTest, CountsGroupDigitsByThree) {
  EXPECT_EQ(CountText(7), "7");
  EXPECT_EQ(CountText(703), "703");
  EXPECT_EQ(CountText(703698), "703,698");
  EXPECT_EQ(CountText(1245154), "1,245,154");
}

TEST(FigureTextTest, FiguresAndBoundsShowTheirUnit) {
  EXPECT_EQ(FigureText(Judge(RowOf(false, 1.5), Counted("ours 934\nother 1000"))), "0.934x");
  EXPECT_EQ(BoundText(RowOf(false, 1.5)), "≤ 1.5x");
  EXPECT_EQ(FigureText(Judge(RowOf(true, 2), Counted("ours 100\nother 231"))),
            "2.31 times as fast");
  EXPECT_EQ(BoundText(RowOf(true, 2)), "≥ 2 times as fast");
  Row row = RowOf(false, 32);
  row.other.clear();
  row.measure = "counter:peak";
  row.unit = "MiB";
  Verdict verdict;
  verdict.row = row;
  verdict.ours = 12.5;
  EXPECT_EQ(FigureText(verdict), "12.5 MiB");
  EXPECT_EQ(MedianText(12.5, row), "12.5 MiB");
  EXPECT_EQ(BoundText(row), "≤ 32 MiB");
}

}  // namespace
}  // namespace stowra_test

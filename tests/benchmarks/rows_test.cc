// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>

#include "benchmarks/report/measurements.h"
#include "benchmarks/report/row.h"

namespace stowra_test {
namespace {

using stowra_bench::ReadRows;
using stowra_bench::Row;
using stowra_bench::Rows;
using Members = std::map<std::string, std::string>;  // values as JSON text

Members GoodRow() {
  return {{"row", R"("load")"},
          {"what", R"("loading")"},
          {"against", R"("the parser")"},
          {"ours", R"("Load/stowra")"},
          {"other", R"("Load/x")"},
          {"measure", R"("time")"},
          {"at_most", "1.5"}};
}

// GoodRow with changed members. An empty value removes the member.
Members Changed(const Members& changes) {
  Members row = GoodRow();
  for (const auto& [name, value] : changes) {
    row[name] = value;
    if (value.empty()) row.erase(name);
  }
  return row;
}

std::string TextOf(const Members& row) {
  std::string text;
  for (const auto& [name, value] : row) {
    text += (text.empty() ? "{\"" : ", \"") + name + "\": " + value;
  }
  return text + '}';
}

Rows Read(const Members& row, const std::string& growth = "") {
  std::istringstream file("{\"rows\": [" + TextOf(row) + "], \"growth\": [" + growth + "]}");
  return ReadRows(file);
}

void ExpectRefused(const Members& changes) {
  EXPECT_THROW(Read(Changed(changes)), std::runtime_error) << TextOf(changes);
}

TEST(RowsTest, ReadsRatioWithUpperBound) {
  const Row row = Read(GoodRow()).comparisons.at(0);
  EXPECT_EQ(row.id, "load");
  EXPECT_EQ(row.what, "loading");
  EXPECT_EQ(row.against_text, "the parser");
  EXPECT_EQ(row.against, Row::Against::kLimit);
  EXPECT_EQ(row.ours, "Load/stowra");
  EXPECT_EQ(row.other, "Load/x");
  EXPECT_FALSE(row.is_times_as_fast);
  EXPECT_EQ(row.bound, 1.5);
}

TEST(RowsTest, ReadsTimesAsFastAgainstPeer) {
  const Members changes = {{"at_most", ""}, {"times_as_fast", "2"}, {"group", R"("peer")"}};
  const Row row = Read(Changed(changes)).comparisons.at(0);
  EXPECT_TRUE(row.is_times_as_fast);
  EXPECT_EQ(row.bound, 2);
  EXPECT_EQ(row.against, Row::Against::kPeer);
}

TEST(RowsTest, ReadsTheReason) {
  EXPECT_EQ(Read(GoodRow()).comparisons.at(0).because, "");
  EXPECT_EQ(Read(Changed({{"because", R"("it does more")"}})).comparisons.at(0).because,
            "it does more");
}

TEST(RowsTest, RejectsIncompleteOrContradictoryRow) {
  ExpectRefused({{"row", ""}});
  ExpectRefused({{"what", ""}});
  ExpectRefused({{"ours", ""}});
  ExpectRefused({{"measure", R"("speed")"}});
  ExpectRefused({{"group", R"("friend")"}});
  ExpectRefused({{"at_most", ""}});
  ExpectRefused({{"at_most", "0"}});
  ExpectRefused({{"times_as_fast", "2"}});
  ExpectRefused({{"other", ""}});
}

TEST(RowsTest, RejectsRowListedTwice) {
  EXPECT_THROW(Read(GoodRow(), TextOf(GoodRow())), std::runtime_error);
}

class ShippedRowsTest : public ::testing::Test {
 protected:
  ShippedRowsTest() {
    std::ifstream file(STOWRA_BENCHMARK_ROWS);
    rows_ = ReadRows(file);
    std::ifstream counts(STOWRA_INSTRUCTION_COUNTS);
    counts_.AddCounts(counts);
  }

  Rows rows_;
  stowra_bench::Measurements counts_;
};

TEST_F(ShippedRowsTest, CompareOnlyRecordedInstructionCases) {
  int compared = 0;
  for (const Row& row : rows_.comparisons) {
    if (row.measure != "instructions") continue;
    ++compared;
    EXPECT_TRUE(counts_.Find(row.ours, row.measure).has_value()) << row.ours;
    EXPECT_TRUE(counts_.Find(row.other, row.measure).has_value()) << row.other;
  }
  EXPECT_EQ(compared, 2);
}

TEST_F(ShippedRowsTest, CompareGrowthOfLibraryWithItself) {
  EXPECT_FALSE(rows_.growth.empty());
  for (const Row& row : rows_.growth) {
    EXPECT_EQ(row.ours.substr(0, row.ours.rfind('/')), row.other.substr(0, row.other.rfind('/')));
    EXPECT_NE(row.ours.find("/stowra/"), std::string::npos) << row.ours;
    EXPECT_LE(row.bound, row.because.empty() ? 11 : 20) << row.id;
  }
}

}  // namespace
}  // namespace stowra_test

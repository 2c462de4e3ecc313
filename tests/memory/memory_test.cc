// SPDX-License-Identifier: MIT
// Limits the memory of each parser to a multiple of its input, and prints the multiples.

#include <gtest/gtest.h>

#include <cstdio>

#include "tests/memory/costs.h"
#include "tests/memory/parsers.h"
#include "tests/support/failing_malloc.h"

#ifdef STOWRA_COUNTS_MEMORY

namespace stowra_test {
namespace {

class MemoryTest : public ::testing::TestWithParam<MeasuredInput> {};

TEST_P(MemoryTest, StaysWithinMultipleOfInputAndIsFreed) {
  const MeasuredInput& measured = GetParam();
  ASSERT_EQ(measured.parse(measured.input) != nullptr, measured.is_taken);
  const Costs costs = MeasureCosts(measured.parse, measured.input);
  const auto size = static_cast<double>(measured.input.size());
  const double peak = static_cast<double>(costs.peak) / size;
  const double final = static_cast<double>(costs.final) / size;
  std::printf("%-22s %7zu bytes: peak %6.2f times, results %6.2f times\n", measured.name.c_str(),
              measured.input.size(), peak, final);
  EXPECT_LE(peak, measured.most_peak);
  EXPECT_LE(final, measured.most_final);
  EXPECT_EQ(costs.left, 0U);
}

INSTANTIATE_TEST_SUITE_P(Of, MemoryTest, ::testing::ValuesIn(MeasuredInputs()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_COUNTS_MEMORY

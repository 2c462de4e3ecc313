// The memory that each parser needs, as a multiple of what it reads. Run whole, the program prints
// them all.

#include <gtest/gtest.h>

#include <cstdio>

#include "tests/memory/costs.h"
#include "tests/memory/parsers.h"
#include "tests/support/failing_malloc.h"

#ifdef STOWRA_COUNTS_MEMORY

namespace stowra_test {
namespace {

class MemoryTest : public ::testing::TestWithParam<MeasuredInput> {};

TEST_P(MemoryTest, IsAMultipleOfTheInputAndGivenBack) {
  const MeasuredInput& measured = GetParam();
  ASSERT_EQ(measured.parse(measured.input) != nullptr, measured.is_taken);
  const Costs costs = MeasureCosts(measured.parse, measured.input);
  const auto size = static_cast<double>(measured.input.size());
  const double peak = static_cast<double>(costs.peak) / size;
  const double final = static_cast<double>(costs.final) / size;
  std::printf("%-22s %7zu bytes: peak %6.2f times that, results %6.2f\n", measured.name.c_str(),
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

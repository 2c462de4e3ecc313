// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/random.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <climits>
#include <cstdint>
#include <thread>
#include <vector>

namespace stowra_test {
namespace {

using testing::ElementsAre;

std::vector<int> Draw(int count, int low, int high) {
  std::vector<int> values;
  for (int i = 0; i < count; ++i) values.push_back(Random::GetValue(low, high));
  return values;
}

std::vector<int> DrawFrom(unsigned seed, int count, int low, int high) {
  Random::SetSeed(seed);
  return Draw(count, low, high);
}

// The expected values of these tests come from a separate calculation of the generator.

TEST(RandomTest, GivesOneSequencePerSeedOnEveryPlatform) {
  EXPECT_THAT(DrawFrom(0, 16, 0, 9), ElementsAre(8, 4, 0, 9, 1, 3, 1, 7, 2, 9, 3, 7, 5, 5, 7, 5));
  EXPECT_THAT(DrawFrom(1, 16, 0, 9), ElementsAre(5, 7, 9, 4, 4, 7, 8, 5, 2, 7, 4, 6, 4, 5, 4, 1));
  EXPECT_THAT(DrawFrom(1700000000, 16, 0, 9),
              ElementsAre(6, 1, 6, 2, 5, 4, 1, 5, 4, 8, 7, 7, 1, 5, 0, 2));
  EXPECT_THAT(DrawFrom(0xFFFFFFFF, 16, 0, 9),
              ElementsAre(4, 3, 9, 0, 7, 9, 4, 7, 1, 0, 3, 1, 4, 2, 8, 2));
}

TEST(RandomTest, CoversRangesOfEveryWidth) {
  EXPECT_THAT(DrawFrom(7, 4, INT_MIN, INT_MAX),
              ElementsAre(-473177628, -2075378473, 1721254016, 356182896));
  EXPECT_THAT(DrawFrom(7, 10, -5, 5), ElementsAre(-1, -5, 4, 1, -1, -3, 0, -2, -4, -1));
  // Nearly half of the draws for this range have to be rejected.
  EXPECT_THAT(DrawFrom(7, 8, -1073741824, 1073741824),
              ElementsAre(-1037689237, 860627008, 178091448, -68820400, -369202392, -851348531,
                          797428882, 815214208));
}

TEST(RandomTest, GivesTheOneValueOfARange) {
  for (const int value : {0, 7, INT_MIN, INT_MAX}) EXPECT_EQ(Random::GetValue(value, value), value);
}

TEST(RandomTest, GivesTheLowBoundOfAReversedRange) {
  EXPECT_EQ(Random::GetValue(5, 4), 5);
  EXPECT_EQ(Random::GetValue(INT_MAX, INT_MIN), INT_MAX);
}

// The values of one seed, so that it cannot fail by chance.
TEST(RandomTest, IsUniform) {
  constexpr int kValues = 10;
  constexpr int kDraws = 100000;
  for (const unsigned seed : {1u, 1700000000u}) {
    Random::SetSeed(seed);
    std::array<double, kValues> counts{};
    for (const int value : Draw(kDraws, 0, kValues - 1))
      ++counts.at(static_cast<std::size_t>(value));
    double chi_squared = 0;
    for (const double count : counts) {
      const double expected = double{kDraws} / kValues;
      chi_squared += (count - expected) * (count - expected) / expected;
    }
    // Nine degrees of freedom: a fair generator stays below in 999 of 1000 cases.
    EXPECT_LT(chi_squared, 27.88);
  }
}

// 2^32 draws do not divide among 3 * 2^30 values. A draw by remainder would make the lowest third
// likelier, a draw by scaling one value of each three.
TEST(RandomTest, IsUniformOverARangeThatDoesNotDivideTheDraws) {
  constexpr int kLow = -0x60000000;
  constexpr int kHigh = 0x5FFFFFFF;
  constexpr int kDraws = 30000;
  Random::SetSeed(11);
  std::array<int, 3> by_third{};
  std::array<int, 3> by_remainder{};
  for (const int value : Draw(kDraws, kLow, kHigh)) {
    const long long offset = 0LL + value - kLow;
    ++by_third[static_cast<std::size_t>(offset >> 30)];
    ++by_remainder[static_cast<std::size_t>(offset % 3)];
  }
  constexpr double kFourDeviations = 4 * 81.6;
  for (const int count : by_third) EXPECT_NEAR(count, kDraws / 3.0, kFourDeviations);
  for (const int count : by_remainder) EXPECT_NEAR(count, kDraws / 3.0, kFourDeviations);
}

// Sums that depend on which values were drawn, and not on their order.
struct Sums {
  std::uint64_t values = 0;
  std::uint64_t squares = 0;
};

Sums DrawSums(int count) {
  Sums sums;
  for (int i = 0; i < count; ++i) {
    const auto value = static_cast<std::uint64_t>(Random::GetValue(0, INT_MAX));
    sums.values += value;
    sums.squares += value * value;
  }
  return sums;
}

TEST(RandomTest, ThreadsShareOneSequence) {
  constexpr int kThreads = 4;
  constexpr int kDraws = 1000000;
  Random::SetSeed(99);
  std::vector<Sums> drawn(kThreads);
  std::vector<std::thread> threads;
  std::atomic<int> waiting{kThreads};
  for (Sums& sums : drawn) {
    threads.emplace_back([&sums, &waiting] {
      for (--waiting; waiting > 0;) std::this_thread::yield();
      sums = DrawSums(kDraws);
    });
  }
  for (std::thread& thread : threads) thread.join();
  Sums together;
  for (const Sums& sums : drawn) {
    together.values += sums.values;
    together.squares += sums.squares;
  }
  Random::SetSeed(99);
  const Sums alone = DrawSums(kThreads * kDraws);
  EXPECT_EQ(together.values, alone.values);
  EXPECT_EQ(together.squares, alone.squares);
}

}  // namespace
}  // namespace stowra_test

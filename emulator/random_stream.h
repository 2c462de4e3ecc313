// SPDX-License-Identifier: MIT
// Pseudo-random numbers that depend only on a seed text.

#ifndef EMULATOR_RANDOM_STREAM_H_
#define EMULATOR_RANDOM_STREAM_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace stowra_emulator {

class RandomStream {
 public:
  explicit RandomStream(std::string_view seed);

  std::uint64_t Next();

  // From 0 to count - 1. Requires count > 0.
  std::size_t Pick(std::size_t count) { return static_cast<std::size_t>(Next() % count); }

  // At least `low` and below `high`.
  double Between(double low, double high);

 private:
  std::uint64_t state_ = 0xCBF29CE484222325;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_RANDOM_STREAM_H_

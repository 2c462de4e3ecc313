// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/random.h"

#include <atomic>
#include <cstdint>

namespace {

// The state of the generator SplitMix64. A draw adds a constant and scrambles the sum. The atomic
// addition gives each thread its own number.
std::atomic<std::uint64_t> state{0};

std::uint32_t Draw() {
  constexpr std::uint64_t kIncrement = 0x9E3779B97F4A7C15u;
  std::uint64_t bits = state.fetch_add(kIncrement, std::memory_order_relaxed) + kIncrement;
  bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9u;
  bits = (bits ^ bits >> 27) * 0x94D049BB133111EBu;
  return static_cast<std::uint32_t>((bits ^ bits >> 31) >> 32);
}

}  // namespace

void Random::SetSeed(unsigned int seed) { state.store(seed, std::memory_order_relaxed); }

int Random::GetValue(int low, int high) {
  if (high <= low) return low;
  // The high half of draw * range is the result. A few draws would make some results likelier than
  // others: those whose low half is below 2^32 % range.
  const std::uint64_t range =
      static_cast<std::uint64_t>(std::int64_t{high} - std::int64_t{low}) + 1;
  const std::uint64_t unfair = (std::uint64_t{1} << 32) % range;
  std::uint64_t product = Draw() * range;
  while (static_cast<std::uint32_t>(product) < unfair) product = Draw() * range;
  return static_cast<int>(std::int64_t{low} + static_cast<std::int64_t>(product >> 32));
}

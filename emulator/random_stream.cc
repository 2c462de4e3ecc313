// SPDX-License-Identifier: MIT
#include "emulator/random_stream.h"

namespace stowra_emulator {

// SplitMix64, started with the 64-bit FNV-1a hash of the seed.

RandomStream::RandomStream(std::string_view seed) {
  for (const char c : seed) {
    state_ = (state_ ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  }
}

std::uint64_t RandomStream::Next() {
  state_ += 0x9E3779B97F4A7C15;
  std::uint64_t mixed = state_;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
  return mixed ^ (mixed >> 31);
}

double RandomStream::Between(double low, double high) {
  const double fraction = static_cast<double>(Next() >> 11) / 9007199254740992.0;  // 2^53
  return low + fraction * (high - low);
}

}  // namespace stowra_emulator

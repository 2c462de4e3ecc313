// SPDX-License-Identifier: MIT
// A generator whose sequence is easy to foresee: 0, 7, 14, ... within the range.

#include "common_stowraapi/platform/random.h"

#include <string>

#include "tests/substitute/effects.h"

using stowra_substitute::Record;

namespace {

int drawn = 0;

}  // namespace

void Random::SetSeed(unsigned int seed) {
  Record("SetSeed " + std::to_string(seed));
  drawn = 0;
}

int Random::GetValue(int low, int high) {
  Record("GetValue " + std::to_string(low) + " " + std::to_string(high));
  return low + drawn++ * 7 % (high - low + 1);
}

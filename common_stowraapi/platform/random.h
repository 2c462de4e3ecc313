// SPDX-License-Identifier: MIT
// Pseudo-random numbers. Not for secrets.

#ifndef COMMON_STOWRAAPI_PLATFORM_RANDOM_H_
#define COMMON_STOWRAAPI_PLATFORM_RANDOM_H_

#include "common_stowraapi/export.h"

// One generator for the process, safe from any thread. A seed gives the same sequence on every
// platform. Threads that draw at the same time share the sequence.
class STOWRA_EXPORT Random {
 public:
  static void SetSeed(unsigned int seed);

  // A number from `low` to `high`, both included, all equally likely. Gives `low` if `high` is
  // lower.
  static int GetValue(int low, int high);
};

#endif  // COMMON_STOWRAAPI_PLATFORM_RANDOM_H_

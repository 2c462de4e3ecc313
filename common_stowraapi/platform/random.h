// Pseudo-random numbers, for labels and not for secrets.

#ifndef COMMON_STOWRAAPI_PLATFORM_RANDOM_H_
#define COMMON_STOWRAAPI_PLATFORM_RANDOM_H_

#include "common_stowraapi/export.h"

// One generator for the process, safe from any thread. One seed gives one sequence, on every
// platform; threads that draw at the same time share that sequence between them.
class STOWRA_EXPORT Random {
 public:
  static void SetSeed(unsigned int seed);

  // A number from `low` to `high`, both included, each equally likely. Gives `low` if `high` is
  // below it.
  static int GetValue(int low, int high);
};

#endif  // COMMON_STOWRAAPI_PLATFORM_RANDOM_H_

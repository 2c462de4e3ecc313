// SPDX-License-Identifier: MIT
#include "tests/memory/costs.h"

#include "tests/support/failing_malloc.h"

namespace stowra_test {

#ifdef STOWRA_COUNTS_MEMORY

Costs MeasureCosts(const Parse& parse, const std::string& input) {
  parse(input);
  const MemoryWatch watch;
  Costs costs;
  std::shared_ptr<void> results = parse(input);
  costs.peak = watch.peak();
  costs.final = watch.live();
  results.reset();
  costs.left = watch.live();
  return costs;
}

#endif

}  // namespace stowra_test

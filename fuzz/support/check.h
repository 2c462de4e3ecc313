// SPDX-License-Identifier: MIT
// Checks for fuzz targets.

#ifndef FUZZ_SUPPORT_CHECK_H_
#define FUZZ_SUPPORT_CHECK_H_

#include <cstdio>
#include <cstdlib>

// Aborts the program if `condition` is false. The fuzzer reports that as a finding.
#define FUZZ_CHECK(condition) \
  ((condition) ? static_cast<void>(0) : stowra_fuzz::Fail(__FILE__, __LINE__, #condition))

namespace stowra_fuzz {

[[noreturn]] inline void Fail(const char* file, int line, const char* condition) {
  std::fprintf(stderr, "%s:%d: check failed: %s\n", file, line, condition);
  std::abort();
}

}  // namespace stowra_fuzz

#endif  // FUZZ_SUPPORT_CHECK_H_

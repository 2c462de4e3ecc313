// What a fuzz target expects of its subject.

#ifndef FUZZ_SUPPORT_CHECK_H_
#define FUZZ_SUPPORT_CHECK_H_

#include <cstdio>
#include <cstdlib>

// Ends the program, which is a finding, unless `condition` holds.
#define FUZZ_CHECK(condition) \
  ((condition) ? static_cast<void>(0) : stowra_fuzz::Fail(__FILE__, __LINE__, #condition))

namespace stowra_fuzz {

[[noreturn]] inline void Fail(const char* file, int line, const char* condition) {
  std::fprintf(stderr, "%s:%d: not so: %s\n", file, line, condition);
  std::abort();
}

}  // namespace stowra_fuzz

#endif  // FUZZ_SUPPORT_CHECK_H_

// SPDX-License-Identifier: MIT
#include "tests/soak/resources.h"

#include <fcntl.h>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define STOWRA_SANITIZED_HEAP
#endif
#endif

#if defined(STOWRA_SANITIZED_HEAP)
#include <sanitizer/allocator_interface.h>
#elif defined(__GLIBC__)
#include <malloc.h>
#endif

namespace stowra_test {

int CountOpenDescriptors() {
  constexpr int kMost = 4096;
  int count = 0;
  for (int descriptor = 0; descriptor < kMost; ++descriptor) {
    count += fcntl(descriptor, F_GETFD) >= 0;
  }
  return count;
}

std::size_t LiveHeapBytes() {
#if defined(STOWRA_SANITIZED_HEAP)
  return __sanitizer_get_current_allocated_bytes();
#elif defined(__GLIBC__)
  const auto info = mallinfo2();
  return info.uordblks + info.hblkhd;
#else
  return 0;
#endif
}

}  // namespace stowra_test

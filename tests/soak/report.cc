// SPDX-License-Identifier: MIT
#include "tests/soak/report.h"

#include <fcntl.h>

#include <cstdio>
#include <utility>
#include <vector>

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
namespace {

std::atomic<int> violations{0};
constexpr int kMostPrinted = 20;

std::vector<std::pair<const char*, const Counter*>>& NamedCounters() {
  static std::vector<std::pair<const char*, const Counter*>> counters;
  return counters;
}

}  // namespace

NamedCounter::NamedCounter(const char* name) { NamedCounters().emplace_back(name, this); }

Tally tally;

void Violate(const std::string& what) {
  if (violations.fetch_add(1) < kMostPrinted) {
    std::fprintf(stderr, "soak: violation: %s\n", what.c_str());
  }
}

bool IsViolated() { return violations.load(std::memory_order_relaxed) > 0; }

void PrintSummary(double seconds) {
  std::printf("%.1f seconds\n", seconds);
  for (const auto& [name, counter] : NamedCounters()) {
    std::printf("  %-40s %12lld\n", name, static_cast<long long>(counter->value()));
  }
  std::printf("violations: %d\n", violations.load());
}

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

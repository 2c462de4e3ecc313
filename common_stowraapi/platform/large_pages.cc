#include "common_stowraapi/platform/large_pages.h"

#include <sys/mman.h>

#include <cstdint>

namespace ovrant::utils {

#ifdef MADV_HUGEPAGE

namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20;

}  // namespace

void PreferLargePages(void* block, std::size_t size) {
  // A block has whole large pages inside, wherever it begins, from twice their size on.
  if (size < 2 * kLargePage) return;
  const auto begin = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t first = (begin + kLargePage - 1) / kLargePage * kLargePage;
  const std::uintptr_t end = (begin + size) / kLargePage * kLargePage;
  madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
}

#else

void PreferLargePages(void* /*block*/, std::size_t /*size*/) {}

#endif

}  // namespace ovrant::utils

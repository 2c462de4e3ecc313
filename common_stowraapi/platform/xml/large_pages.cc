#include "common_stowraapi/platform/xml/large_pages.h"

#include <sys/mman.h>

#include <memory>

namespace ovrant::utils {

#ifdef MADV_HUGEPAGE

namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20;

}  // namespace

void PreferLargePages(void* block, std::size_t size) {
  // Whole large pages, which begin and end where such pages do.
  void* first = block;
  if (std::align(kLargePage, kLargePage, first, size) == nullptr) return;
  madvise(first, size / kLargePage * kLargePage, MADV_HUGEPAGE);
}

#else

void PreferLargePages(void* /*block*/, std::size_t /*size*/) {}

#endif

}  // namespace ovrant::utils

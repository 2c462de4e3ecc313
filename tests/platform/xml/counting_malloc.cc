#include "tests/platform/xml/counting_malloc.h"

#ifdef STOWRA_COUNTS_MEMORY

#include <malloc.h>

#include <algorithm>
#include <cerrno>

// The allocator of the C library, by the names that stay its own. NOLINTBEGIN(*-identifier)
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* block, std::size_t size);
extern "C" void* __libc_memalign(std::size_t alignment, std::size_t size);
extern "C" void __libc_free(void* block);
// NOLINTEND(*-identifier)

namespace {

thread_local long long live_bytes = 0;
thread_local long long peak_bytes = 0;
thread_local long allowed_allocations = -1;  // Negative: all of them.
thread_local bool failure_came = false;

bool MustFail() {
  if (allowed_allocations < 0 || allowed_allocations-- > 0) return false;
  failure_came = true;
  errno = ENOMEM;
  return true;
}

void* Counted(void* block) {
  if (block == nullptr) return nullptr;
  live_bytes += static_cast<long long>(malloc_usable_size(block));
  peak_bytes = std::max(peak_bytes, live_bytes);
  return block;
}

void Forget(void* block) {
  if (block != nullptr) live_bytes -= static_cast<long long>(malloc_usable_size(block));
}

}  // namespace

extern "C" void* malloc(std::size_t size) noexcept {
  return MustFail() ? nullptr : Counted(__libc_malloc(size));
}

extern "C" void* calloc(std::size_t count, std::size_t size) noexcept {
  return MustFail() ? nullptr : Counted(__libc_calloc(count, size));
}

// While a block moves, both it and its copy are there.
extern "C" void* realloc(void* block, std::size_t size) noexcept {
  if (MustFail()) return nullptr;
  const long long before = block == nullptr ? 0 : static_cast<long long>(malloc_usable_size(block));
  void* const moved = __libc_realloc(block, size);
  if (moved == nullptr && size != 0) return nullptr;
  Counted(moved);
  live_bytes -= before;
  return moved;
}

extern "C" void* memalign(std::size_t alignment, std::size_t size) noexcept {
  return MustFail() ? nullptr : Counted(__libc_memalign(alignment, size));
}

extern "C" void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  return memalign(alignment, size);
}

extern "C" int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
  *block = memalign(alignment, size);
  return *block == nullptr ? ENOMEM : 0;
}

extern "C" void free(void* block) noexcept {
  Forget(block);
  __libc_free(block);
}

namespace stowra_test {

MemoryWatch::MemoryWatch() : before_(live_bytes) { peak_bytes = live_bytes; }

std::size_t MemoryWatch::live() const {
  return static_cast<std::size_t>(std::max(0LL, live_bytes - before_));
}

std::size_t MemoryWatch::peak() const { return static_cast<std::size_t>(peak_bytes - before_); }

FailingMalloc::FailingMalloc(long allowed) {
  failure_came = false;
  allowed_allocations = allowed;
}

FailingMalloc::~FailingMalloc() { allowed_allocations = -1; }

bool FailingMalloc::has_failed() const { return failure_came; }

}  // namespace stowra_test

#endif  // STOWRA_COUNTS_MEMORY

// SPDX-License-Identifier: MIT
#include "tests/support/failing_malloc.h"

#ifdef STOWRA_FAILS_ALLOCATIONS

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <new>

#include "tests/support/bystander.h"

// The real allocator, under names that nothing here replaces. NOLINTBEGIN(*-identifier)
#ifdef STOWRA_UNDER_ADDRESS_SANITIZER
#define STOWRA_REAL(function) __interceptor_##function
#else
#define STOWRA_REAL(function) __libc_##function
#endif
extern "C" void* STOWRA_REAL(malloc)(std::size_t size);
extern "C" void* STOWRA_REAL(calloc)(std::size_t count, std::size_t size);
extern "C" void* STOWRA_REAL(realloc)(void* block, std::size_t size);
extern "C" void* STOWRA_REAL(memalign)(std::size_t alignment, std::size_t size);
extern "C" void STOWRA_REAL(free)(void* block);
// NOLINTEND(*-identifier)

// Shared libraries must find these too.
#define STOWRA_SEEN_BY_ALL __attribute__((visibility("default")))

namespace {

using stowra_test::FailingMalloc;
using stowra_test::Threads;

struct Counts {
  long blocks = 0;
  long long bytes = 0;
  long long peak = 0;
};

thread_local Counts own;
std::atomic<long> all_blocks{0};
std::atomic<long long> all_bytes{0};

std::atomic<bool> is_armed{false};
std::atomic<const Counts*> arming_thread{nullptr};
std::atomic<Threads> failing_threads{Threads::kThis};
std::atomic<FailingMalloc::Mode> mode{FailingMalloc::Mode::kOnce};
std::atomic<long> allowed_allocations{0};
std::atomic<long> failure_count{0};

// AddressSanitizer aborts if it cannot allocate while it starts a thread. It does so before the
// thread itself allocates.
bool IsThreadStarting() {
#ifdef STOWRA_UNDER_ADDRESS_SANITIZER
  constexpr int kOfTheSanitizer = 4;
  thread_local int allocations = 0;
  return allocations < kOfTheSanitizer && ++allocations <= kOfTheSanitizer;
#else
  return false;
#endif
}

bool MustFail() {
  if (IsThreadStarting() || !is_armed || stowra_test::is_bystander) return false;
  const bool is_this = arming_thread == &own;
  if (failing_threads == (is_this ? Threads::kOthers : Threads::kThis)) return false;
  const long allowed = allowed_allocations.fetch_sub(1);
  if (allowed > 0 || (allowed < 0 && mode == FailingMalloc::Mode::kOnce)) return false;
  ++failure_count;
  errno = ENOMEM;
  return true;
}

void Add(long blocks, long long bytes) {
  own.blocks += blocks;
  own.bytes += bytes;
  own.peak = std::max(own.peak, own.bytes);
  if (stowra_test::is_bystander) return;
  all_blocks.fetch_add(blocks, std::memory_order_relaxed);
  all_bytes.fetch_add(bytes, std::memory_order_relaxed);
}

// The functions below call the real allocator. With STOWRA_COUNTS_MEMORY they also store the size
// that the caller asked for. The real block may be larger, by an amount that varies.
#ifdef STOWRA_COUNTS_MEMORY

// Lies directly before each block.
struct alignas(std::max_align_t) Label {
  std::size_t size;    // that the caller asked for
  std::size_t offset;  // from the real block's start to the caller's block
};

Label* LabelOf(void* block) { return static_cast<Label*>(block) - 1; }

void* BaseOf(void* block) { return static_cast<char*>(block) - LabelOf(block)->offset; }

void* Labelled(void* base, std::size_t size, std::size_t offset) {
  if (base == nullptr) return nullptr;
  void* const block = static_cast<char*>(base) + offset;
  *LabelOf(block) = {size, offset};
  return block;
}

long long SizeOf(void* block) { return static_cast<long long>(LabelOf(block)->size); }

// False, with errno set, if `size` + `offset` overflows.
bool HasRoom(std::size_t size, std::size_t offset) {
  if (size <= SIZE_MAX - offset) return true;
  errno = ENOMEM;
  return false;
}

void* Allocate(std::size_t size) {
  constexpr std::size_t kOffset = sizeof(Label);
  if (!HasRoom(size, kOffset)) return nullptr;
  return Labelled(STOWRA_REAL(malloc)(size + kOffset), size, kOffset);
}

void* AllocateZeros(std::size_t count, std::size_t size) {
  constexpr std::size_t kOffset = sizeof(Label);
  if (size != 0 && count > SIZE_MAX / size) count = SIZE_MAX;
  const std::size_t all = count == SIZE_MAX ? SIZE_MAX : count * size;
  if (!HasRoom(all, kOffset)) return nullptr;
  return Labelled(STOWRA_REAL(calloc)(1, all + kOffset), all, kOffset);
}

void* AllocateAligned(std::size_t alignment, std::size_t size) {
  const std::size_t offset = std::max(alignment, sizeof(Label));
  if (!HasRoom(size, offset)) return nullptr;
  return Labelled(STOWRA_REAL(memalign)(offset, size + offset), size, offset);
}

void* Reallocate(void* block, std::size_t size) {
  const std::size_t offset = LabelOf(block)->offset;
  if (!HasRoom(size, offset)) return nullptr;
  return Labelled(STOWRA_REAL(realloc)(BaseOf(block), size + offset), size, offset);
}

void Free(void* block) { STOWRA_REAL(free)(BaseOf(block)); }

#else

long long SizeOf(void* /*block*/) { return 0; }
void* Allocate(std::size_t size) { return STOWRA_REAL(malloc)(size); }
void* AllocateZeros(std::size_t count, std::size_t size) {
  return STOWRA_REAL(calloc)(count, size);
}
void* AllocateAligned(std::size_t alignment, std::size_t size) {
  return STOWRA_REAL(memalign)(alignment, size);
}
void* Reallocate(void* block, std::size_t size) { return STOWRA_REAL(realloc)(block, size); }
void Free(void* block) { STOWRA_REAL(free)(block); }

#endif

void* Counted(void* block) {
  if (block != nullptr) Add(1, SizeOf(block));
  return block;
}

}  // namespace

extern "C" STOWRA_SEEN_BY_ALL void* malloc(std::size_t size) noexcept {
  return MustFail() ? nullptr : Counted(Allocate(size));
}

extern "C" STOWRA_SEEN_BY_ALL void free(void* block) noexcept {
  if (block == nullptr) return;
  Add(-1, -SizeOf(block));
  Free(block);
}

extern "C" STOWRA_SEEN_BY_ALL void* calloc(std::size_t count, std::size_t size) noexcept {
  return MustFail() ? nullptr : Counted(AllocateZeros(count, size));
}

// The peak counts the old block and the new one together, since both may exist during the move.
extern "C" STOWRA_SEEN_BY_ALL void* realloc(void* block, std::size_t size) noexcept {
  if (block == nullptr) return malloc(size);
  if (size == 0) {
    free(block);
    return nullptr;
  }
  if (MustFail()) return nullptr;
  const long long before = SizeOf(block);
  void* const moved = Reallocate(block, size);
  if (moved == nullptr) return nullptr;
  Counted(moved);
  Add(-1, -before);
  return moved;
}

extern "C" STOWRA_SEEN_BY_ALL void* memalign(std::size_t alignment, std::size_t size) noexcept {
  return MustFail() ? nullptr : Counted(AllocateAligned(alignment, size));
}

#ifdef STOWRA_COUNTS_MEMORY
extern "C" STOWRA_SEEN_BY_ALL std::size_t malloc_usable_size(void* block) noexcept {
  return block == nullptr ? 0 : LabelOf(block)->size;
}
#endif

extern "C" STOWRA_SEEN_BY_ALL void* aligned_alloc(std::size_t alignment,
                                                  std::size_t size) noexcept {
  return memalign(alignment, size);
}

extern "C" STOWRA_SEEN_BY_ALL int posix_memalign(void** block, std::size_t alignment,
                                                 std::size_t size) noexcept {
  void* const made = memalign(alignment, size);
  if (made == nullptr) return ENOMEM;
  *block = made;
  return 0;
}

// AddressSanitizer's own operator new would not call the malloc above.
STOWRA_SEEN_BY_ALL void* operator new(std::size_t size) {
  void* const block = malloc(std::max<std::size_t>(size, 1));
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
STOWRA_SEEN_BY_ALL void* operator new[](std::size_t size) { return operator new(size); }
STOWRA_SEEN_BY_ALL void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return malloc(std::max<std::size_t>(size, 1));
}
STOWRA_SEEN_BY_ALL void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return malloc(std::max<std::size_t>(size, 1));
}
STOWRA_SEEN_BY_ALL void operator delete(void* block) noexcept { free(block); }
STOWRA_SEEN_BY_ALL void operator delete[](void* block) noexcept { free(block); }
STOWRA_SEEN_BY_ALL void operator delete(void* block, std::size_t) noexcept { free(block); }
STOWRA_SEEN_BY_ALL void operator delete[](void* block, std::size_t) noexcept { free(block); }

namespace stowra_test {
namespace {

long Blocks(Threads threads) { return threads == Threads::kThis ? own.blocks : all_blocks.load(); }

long long Bytes(Threads threads) {
  return threads == Threads::kThis ? own.bytes : all_bytes.load();
}

}  // namespace

MemoryWatch::MemoryWatch(Threads threads)
    : threads_(threads), blocks_before_(Blocks(threads)), bytes_before_(Bytes(threads)) {
  own.peak = own.bytes;
}

long MemoryWatch::blocks() const { return Blocks(threads_) - blocks_before_; }

std::size_t MemoryWatch::live() const {
  return static_cast<std::size_t>(std::max(0LL, Bytes(threads_) - bytes_before_));
}

std::size_t MemoryWatch::peak() const { return static_cast<std::size_t>(own.peak - bytes_before_); }

FailingMalloc::FailingMalloc(long allowed, Threads threads, Mode wanted_mode) {
  failure_count = 0;
  allowed_allocations = allowed;
  failing_threads = threads;
  mode = wanted_mode;
  arming_thread = &own;
  is_armed = true;
}

FailingMalloc::~FailingMalloc() { is_armed = false; }

long FailingMalloc::failures() const { return failure_count; }

}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS

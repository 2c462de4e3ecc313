// SPDX-License-Identifier: MIT
#include "tests/support/failing_new.h"

#include <cstdlib>
#include <new>

#ifdef STOWRA_COUNTS_ALLOCATIONS

namespace {

thread_local long live_allocations = 0;
thread_local long live_arrays = 0;
thread_local long allowed_allocations = -1;  // negative: no limit

}  // namespace

void* operator new(std::size_t size) {
  if (allowed_allocations >= 0 && allowed_allocations-- == 0) throw std::bad_alloc();
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  ++live_allocations;
  return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void* operator new[](std::size_t size) {
  void* const block = operator new(size);
  ++live_arrays;
  return block;
}

void operator delete(void* block) noexcept {
  if (block != nullptr) --live_allocations;
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }

void operator delete[](void* block) noexcept {
  if (block != nullptr) --live_arrays;
  operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept { operator delete[](block); }

namespace stowra_test {

long LiveAllocations() { return live_allocations; }

long LiveArrays() { return live_arrays; }

bool RunsOutOfMemory(const std::function<void()>& work, long allowed) {
  bool threw = false;
  allowed_allocations = allowed;
  try {
    work();
  } catch (const std::bad_alloc&) {
    threw = true;
  }
  allowed_allocations = -1;
  return threw;
}

}  // namespace stowra_test

#endif  // STOWRA_COUNTS_ALLOCATIONS

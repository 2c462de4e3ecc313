// SPDX-License-Identifier: MIT
// Replaces malloc and operator new: they count allocations and fail on request. For programs that
// compile failing_malloc.cc.

#ifndef TESTS_SUPPORT_FAILING_MALLOC_H_
#define TESTS_SUPPORT_FAILING_MALLOC_H_

#include <cstddef>
#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__)
#define STOWRA_UNDER_ADDRESS_SANITIZER
#elif defined(__SANITIZE_THREAD__)
#define STOWRA_UNDER_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define STOWRA_UNDER_ADDRESS_SANITIZER
#elif __has_feature(thread_sanitizer)
#define STOWRA_UNDER_THREAD_SANITIZER
#endif
#endif

// The replaced functions must have a second name, under which the program can still call them.
#if defined(__GLIBC__) && !defined(STOWRA_UNDER_THREAD_SANITIZER)
#define STOWRA_FAILS_ALLOCATIONS
// AddressSanitizer cannot tell a block's size at every moment, so bytes are not counted there.
#ifndef STOWRA_UNDER_ADDRESS_SANITIZER
#define STOWRA_COUNTS_MEMORY
#endif

namespace stowra_test {

// The threads whose allocations count, seen from the thread that asks. Bystanders never count.
enum class Threads { kThis, kOthers, kAll };

// Counts what this thread (kThis), or any thread, has allocated since construction and not freed.
class MemoryWatch {
 public:
  explicit MemoryWatch(Threads threads = Threads::kThis);

  long blocks() const;

  // Bytes, never negative. peak() is the most at any one time. It requires kThis.
  std::size_t live() const;
  std::size_t peak() const;

 private:
  const Threads threads_;
  const long blocks_before_;
  const long long bytes_before_;
};

// Lets `allowed` allocations of those threads succeed, then fails the next one. Later ones succeed
// again with kOnce and fail with kFromThenOn. Works until destruction. Only one may exist at a
// time.
class FailingMalloc {
 public:
  enum class Mode { kOnce, kFromThenOn };

  explicit FailingMalloc(long allowed, Threads threads = Threads::kThis, Mode mode = Mode::kOnce);
  ~FailingMalloc();

  FailingMalloc(const FailingMalloc&) = delete;
  FailingMalloc& operator=(const FailingMalloc&) = delete;

  long failures() const;
};

}  // namespace stowra_test

#endif

#endif  // TESTS_SUPPORT_FAILING_MALLOC_H_

// The test program's own malloc and operator new: they count, and fail when told to. For the
// programs that compile failing_malloc.cc.

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

// Only where the functions that are replaced stay at hand under another name.
#if defined(__GLIBC__) && !defined(STOWRA_UNDER_THREAD_SANITIZER)
#define STOWRA_FAILS_ALLOCATIONS
// An address sanitizer cannot be asked for sizes at any time: bytes are not counted under one.
#ifndef STOWRA_UNDER_ADDRESS_SANITIZER
#define STOWRA_COUNTS_MEMORY
#endif

namespace stowra_test {

// Whose allocations count. Bystanders' never do.
enum class Threads { kThis, kOthers, kAll };

// What has been allocated and not freed while one lives, by this thread or by all.
class MemoryWatch {
 public:
  explicit MemoryWatch(Threads threads = Threads::kThis);

  long blocks() const;

  // Bytes that are live; the most that ever were, of this thread's. Never negative.
  std::size_t live() const;
  std::size_t peak() const;

 private:
  const Threads threads_;
  const long blocks_before_;
  const long long bytes_before_;
};

// While one lives, the allocation of those threads that follows after `allowed` others fails; those
// after it succeed again, or with kFromThenOn fail, too. One at a time in the process.
class FailingMalloc {
 public:
  enum class Mode { kOnce, kFromThenOn };

  explicit FailingMalloc(long allowed, Threads threads = Threads::kThis, Mode mode = Mode::kOnce);
  ~FailingMalloc();

  FailingMalloc(const FailingMalloc&) = delete;
  FailingMalloc& operator=(const FailingMalloc&) = delete;

  bool has_failed() const { return failures() > 0; }
  long failures() const;
};

}  // namespace stowra_test

#endif

#endif  // TESTS_SUPPORT_FAILING_MALLOC_H_

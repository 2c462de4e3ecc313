// The test program's own malloc: it counts the bytes of each thread, and fails when told to. Only
// where malloc can be replaced with the old one still at hand; sanitizers bring one of their own.

#ifndef TESTS_PLATFORM_XML_COUNTING_MALLOC_H_
#define TESTS_PLATFORM_XML_COUNTING_MALLOC_H_

#include <cstddef>
#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define STOWRA_UNDER_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define STOWRA_UNDER_SANITIZER
#endif
#endif
#if defined(__GLIBC__) && !defined(STOWRA_UNDER_SANITIZER)
#define STOWRA_COUNTS_MEMORY

namespace stowra_test {

// The bytes that this thread allocates and frees while one lives. One at a time.
class MemoryWatch {
 public:
  MemoryWatch();

  // Allocated and not freed; the most that this ever was.
  std::size_t live() const;
  std::size_t peak() const;

 private:
  long long before_;
};

// While one lives, the allocation of this thread that follows after `allowed` others fails; those
// after it succeed again.
class FailingMalloc {
 public:
  explicit FailingMalloc(long allowed);
  ~FailingMalloc();

  FailingMalloc(const FailingMalloc&) = delete;
  FailingMalloc& operator=(const FailingMalloc&) = delete;

  bool has_failed() const;
};

}  // namespace stowra_test

#endif

#endif  // TESTS_PLATFORM_XML_COUNTING_MALLOC_H_

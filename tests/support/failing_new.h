// The test program's own operator new: it counts, and fails when told to. For the programs that
// compile failing_new.cc.

#ifndef TESTS_SUPPORT_FAILING_NEW_H_
#define TESTS_SUPPORT_FAILING_NEW_H_

// ThreadSanitizer brings an operator new that no other can replace. The tests of this header are
// not about threads, and are left out there.
#if defined(__SANITIZE_THREAD__)
#define STOWRA_UNDER_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define STOWRA_UNDER_THREAD_SANITIZER
#endif
#endif
#ifndef STOWRA_UNDER_THREAD_SANITIZER
#define STOWRA_COUNTS_ALLOCATIONS

#include <functional>

namespace stowra_test {

// Allocations of this thread less those that it freed.
long LiveAllocations();

// Of those, the ones from new[].
long LiveArrays();

// While one lives, the allocation of this thread that follows after `allowed` others throws
// std::bad_alloc; those after it succeed again.
class FailingNew {
 public:
  explicit FailingNew(long allowed);
  ~FailingNew();

  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
};

// Whether `work` threw std::bad_alloc when the allocation that followed after `allowed` others
// failed.
bool RunsOutOfMemory(const std::function<void()>& work, long allowed);

}  // namespace stowra_test

#endif  // STOWRA_UNDER_THREAD_SANITIZER

#endif  // TESTS_SUPPORT_FAILING_NEW_H_

// SPDX-License-Identifier: MIT
// Replaces operator new: it counts allocations and fails on request. For programs that compile
// failing_new.cc.

#ifndef TESTS_SUPPORT_FAILING_NEW_H_
#define TESTS_SUPPORT_FAILING_NEW_H_

// ThreadSanitizer's operator new cannot be replaced. Tests that use this header are left out there.
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

// This thread's allocations minus its deallocations.
long LiveAllocations();

// The same for new[] and delete[] alone.
long LiveArrays();

// Runs `work` and lets `allowed` allocations of this thread succeed. Then the next one throws
// std::bad_alloc, and later ones succeed again. True if `work` threw std::bad_alloc.
bool RunsOutOfMemory(const std::function<void()>& work, long allowed);

}  // namespace stowra_test

#endif  // STOWRA_UNDER_THREAD_SANITIZER

#endif  // TESTS_SUPPORT_FAILING_NEW_H_

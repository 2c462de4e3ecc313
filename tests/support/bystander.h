// SPDX-License-Identifier: MIT
// Marks threads that belong to the test and not to the library.

#ifndef TESTS_SUPPORT_BYSTANDER_H_
#define TESTS_SUPPORT_BYSTANDER_H_

namespace stowra_test {

// Such a thread sets this. Its allocations then neither count nor fail (failing_malloc.h).
inline thread_local bool is_bystander = false;

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_BYSTANDER_H_

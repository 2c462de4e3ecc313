// Threads of a test that are none of the library's.

#ifndef TESTS_SUPPORT_BYSTANDER_H_
#define TESTS_SUPPORT_BYSTANDER_H_

namespace stowra_test {

// Set by such a thread: what it allocates neither counts nor fails (failing_malloc.h).
inline thread_local bool is_bystander = false;

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_BYSTANDER_H_

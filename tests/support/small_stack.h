// SPDX-License-Identifier: MIT
// Runs code on the smallest stack that hosts give their threads.

#ifndef TESTS_SUPPORT_SMALL_STACK_H_
#define TESTS_SUPPORT_SMALL_STACK_H_

#include <functional>

namespace stowra_test {

// Runs `work` on a thread with a stack of 512 KiB and waits for its end.
void RunOnSmallStack(const std::function<void()>& work);

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_SMALL_STACK_H_

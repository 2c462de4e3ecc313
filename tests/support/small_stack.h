// SPDX-License-Identifier: MIT
// Runs code on the smallest stack that hosts give their threads.

#ifndef TESTS_SUPPORT_SMALL_STACK_H_
#define TESTS_SUPPORT_SMALL_STACK_H_

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>
#include <functional>

namespace stowra_test {

// Runs `work` on a thread with a stack of 512 KiB and waits for its end.
inline void RunOnSmallStack(std::function<void()> work) {
  const auto run = [](void* function) -> void* {
    (*static_cast<std::function<void()>*>(function))();
    return nullptr;
  };
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{512} << 10), 0);
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_SMALL_STACK_H_

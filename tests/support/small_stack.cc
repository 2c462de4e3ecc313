// SPDX-License-Identifier: MIT
#include "tests/support/small_stack.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>

namespace stowra_test {
namespace {

constexpr std::size_t kStackSize = std::size_t{512} << 10;

void* Run(void* work) {
  (*static_cast<const std::function<void()>*>(work))();
  return nullptr;
}

}  // namespace

void RunOnSmallStack(const std::function<void()>& work) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStackSize), 0);
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, Run, const_cast<std::function<void()>*>(&work)),
            0);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

}  // namespace stowra_test

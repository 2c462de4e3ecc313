// SPDX-License-Identifier: MIT
#include "host/main_loop.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace stowra {
namespace {

TEST(MainLoopTest, RunsTasksInOrderOneAtATime) {
  MainLoop loop;
  std::string order;
  loop.Post([&order] { order += 'a'; });
  loop.Post([&order] { order += 'b'; });
  EXPECT_EQ(order, "");
  loop.RunNext();
  EXPECT_EQ(order, "a");
  loop.RunNext();
  EXPECT_EQ(order, "ab");
}

TEST(MainLoopTest, RunsTasksOfOtherThreadsOnItsOwn) {
  constexpr int kThreads = 4;
  constexpr int kTasks = 250;
  MainLoop loop;
  std::vector<std::thread::id> ran_on;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&loop, &ran_on] {
      for (int task = 0; task < kTasks; ++task) {
        loop.Post([&ran_on] { ran_on.push_back(std::this_thread::get_id()); });
      }
    });
  }
  for (int i = 0; i < kThreads * kTasks; ++i) loop.RunNext();
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(ran_on, std::vector<std::thread::id>(kThreads * kTasks, std::this_thread::get_id()));
}

TEST(MainLoopTest, AllowsTaskToPostAnother) {
  MainLoop loop;
  bool done = false;
  loop.Post([&loop, &done] { loop.Post([&done] { done = true; }); });
  loop.RunNext();
  EXPECT_FALSE(done);
  loop.RunNext();
  EXPECT_TRUE(done);
}

}  // namespace
}  // namespace stowra

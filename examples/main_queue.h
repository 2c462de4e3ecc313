// SPDX-License-Identifier: MIT
// A plain main loop: any thread posts tasks, the main thread runs them one after the other.

#ifndef EXAMPLES_MAIN_QUEUE_H_
#define EXAMPLES_MAIN_QUEUE_H_

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <utility>

#include "common_stowraapi/common_stowraapi.h"

// While it lives, background transfers end on the thread that runs it.
class MainQueue {
 public:
  MainQueue() {
    ovrant::internet::InternetData::SetCompletionExecutor(
        [this](std::function<void()> completion) { Post(std::move(completion)); });
  }
  ~MainQueue() { ovrant::internet::InternetData::SetCompletionExecutor(nullptr); }

  MainQueue(const MainQueue&) = delete;
  MainQueue& operator=(const MainQueue&) = delete;

  void Post(std::function<void()> task) {
    const std::lock_guard<std::mutex> lock(mutex_);
    tasks_.push_back(std::move(task));
    posted_.notify_one();
  }

  // Runs tasks until one of them has set `done`.
  void RunUntil(const bool& done) {
    while (!done) {
      std::unique_lock<std::mutex> lock(mutex_);
      posted_.wait(lock, [this] { return !tasks_.empty(); });
      const std::function<void()> task = std::move(tasks_.front());
      tasks_.pop_front();
      lock.unlock();
      task();
    }
  }

 private:
  std::mutex mutex_;
  std::condition_variable posted_;
  std::deque<std::function<void()>> tasks_;
};

#endif  // EXAMPLES_MAIN_QUEUE_H_

// SPDX-License-Identifier: MIT
#include "host/main_loop.h"

#include <utility>

#include "common_stowraapi/platform/internet_data.h"

namespace stowra {

using ovrant::internet::InternetData;

MainLoop::MainLoop() {
  InternetData::SetCompletionExecutor(
      [this](std::function<void()> completion) { Post(std::move(completion)); });
}

MainLoop::~MainLoop() { InternetData::SetCompletionExecutor(nullptr); }

void MainLoop::Post(std::function<void()> task) noexcept {
  const std::lock_guard<std::mutex> lock(mutex_);
  tasks_.push_back(std::move(task));
  posted_.notify_one();
}

void MainLoop::RunNext() {
  std::unique_lock<std::mutex> lock(mutex_);
  posted_.wait(lock, [this] { return !tasks_.empty(); });
  const std::function<void()> task = std::move(tasks_.front());
  tasks_.pop_front();
  lock.unlock();
  task();
}

}  // namespace stowra

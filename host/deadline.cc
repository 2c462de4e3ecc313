// SPDX-License-Identifier: MIT
#include "host/deadline.h"

#include <utility>

namespace stowra {

Deadline::Deadline(std::chrono::duration<float> time, std::function<void()> on_end)
    : watcher_([this, time, on_end = std::move(on_end)] {
        const auto pause = std::chrono::duration_cast<std::chrono::milliseconds>(time);
        std::unique_lock<std::mutex> lock(mutex_);
        if (changed_.wait_for(lock, pause, [this] { return is_met_; })) return;
        lock.unlock();
        on_end();
      }) {}

Deadline::~Deadline() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    is_met_ = true;
  }
  changed_.notify_one();
  watcher_.join();
}

}  // namespace stowra

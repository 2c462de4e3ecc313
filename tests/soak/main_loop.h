// SPDX-License-Identifier: MIT
// The host's main loop, which runs completions.

#ifndef TESTS_SOAK_MAIN_LOOP_H_
#define TESTS_SOAK_MAIN_LOOP_H_

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "tests/soak/report.h"

namespace stowra_test {

// The thread that constructs the loop runs it.
class MainLoop {
 public:
  using Function = std::function<void()>;
  using Clock = std::chrono::steady_clock;

  // Lets the loop run `completion` once it is due. Safe from any thread.
  void Post(Function completion, Clock::time_point due) {
    const std::lock_guard<std::mutex> lock(mutex_);
    entries_.push_back({std::move(completion), due});
    posted_.notify_one();
  }

  // Waits briefly for a completion, then runs a few that are due, in random order.
  void RunSome(Random& random) {
    {
      std::unique_lock<std::mutex> lock(mutex_);
      if (entries_.empty()) posted_.wait_for(lock, std::chrono::milliseconds(1));
    }
    constexpr int kMostAtOnce = 8;
    for (int i = 0; i < kMostAtOnce; ++i) {
      const Function completion = TakeDue(random);
      if (!completion) return;
      completion();
      tally.completions_run.Add();
    }
  }

  bool IsThisThread() const { return std::this_thread::get_id() == thread_; }
  bool IsEmpty() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return entries_.empty();
  }

 private:
  struct Entry {
    Function completion;
    Clock::time_point due;
  };

  Function TakeDue(Random& random) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (entries_.empty()) return nullptr;
    const std::size_t first = random.Draw(static_cast<std::uint32_t>(entries_.size()));
    const Clock::time_point now = Clock::now();
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      Entry& entry = entries_[(first + i) % entries_.size()];
      if (entry.due > now) continue;
      std::swap(entry, entries_.back());
      Function completion = std::move(entries_.back().completion);
      entries_.pop_back();
      return completion;
    }
    return nullptr;
  }

  const std::thread::id thread_ = std::this_thread::get_id();
  std::mutex mutex_;
  std::condition_variable posted_;
  std::vector<Entry> entries_;
};

}  // namespace stowra_test

#endif  // TESTS_SOAK_MAIN_LOOP_H_

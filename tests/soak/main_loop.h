// SPDX-License-Identifier: MIT
// The host's main loop, which runs completions.

#ifndef TESTS_SOAK_MAIN_LOOP_H_
#define TESTS_SOAK_MAIN_LOOP_H_

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "tests/soak/report.h"

namespace stowra_test {

// The thread that constructs the loop runs it.
class MainLoop {
 public:
  using Function = std::function<void()>;
  using Clock = std::chrono::steady_clock;

  // Lets the loop run `completion` once it is due. Safe from any thread.
  void Post(Function completion, Clock::time_point due);

  // Waits briefly for a completion, then runs a few that are due, in random order.
  void RunSome(Random& random);

  bool IsThisThread() const { return std::this_thread::get_id() == thread_; }
  bool IsEmpty();

 private:
  struct Entry {
    Function completion;
    Clock::time_point due;
  };

  Function TakeDue(Random& random);

  const std::thread::id thread_ = std::this_thread::get_id();
  std::mutex mutex_;
  std::condition_variable posted_;
  std::vector<Entry> entries_;
};

}  // namespace stowra_test

#endif  // TESTS_SOAK_MAIN_LOOP_H_

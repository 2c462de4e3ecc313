// SPDX-License-Identifier: MIT
// The host's main loop.

#ifndef HOST_MAIN_LOOP_H_
#define HOST_MAIN_LOOP_H_

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

namespace stowra {

// Runs tasks from other threads on the main thread. While it lives, background transfers complete
// here, so their notifications arrive on the main thread. One at a time in a process.
class MainLoop {
 public:
  MainLoop();
  ~MainLoop();

  MainLoop(const MainLoop&) = delete;
  MainLoop& operator=(const MainLoop&) = delete;

  // Appends a task, from any thread. If memory runs out, the program ends: a lost task would leave
  // RunNext waiting forever.
  void Post(std::function<void()> task) noexcept;

  // Waits for the next task and runs it on this thread.
  void RunNext();

 private:
  std::mutex mutex_;
  std::condition_variable posted_;
  std::deque<std::function<void()>> tasks_;
};

}  // namespace stowra

#endif  // HOST_MAIN_LOOP_H_

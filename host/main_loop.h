// The host's main loop.

#ifndef HOST_MAIN_LOOP_H_
#define HOST_MAIN_LOOP_H_

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

namespace stowra {

// Runs on the main thread what other threads hand to it. While it lives, the completions of
// background transfers come here, and so their notifications arrive on the main thread. One at a
// time in a process.
class MainLoop {
 public:
  MainLoop();
  ~MainLoop();

  MainLoop(const MainLoop&) = delete;
  MainLoop& operator=(const MainLoop&) = delete;

  // Appends a task. From any thread. A task that is lost for want of memory would never be missed,
  // only waited for: that ends the program.
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

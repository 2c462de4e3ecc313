// SPDX-License-Identifier: MIT
// Limits the time of a command.

#ifndef HOST_DEADLINE_H_
#define HOST_DEADLINE_H_

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace stowra {

// Calls a function on a thread of its own when the time is over. The destructor calls it off.
class Deadline {
 public:
  Deadline(std::chrono::duration<float> time, std::function<void()> on_end);
  ~Deadline();

  Deadline(const Deadline&) = delete;
  Deadline& operator=(const Deadline&) = delete;

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool is_met_ = false;
  std::thread watcher_;
};

}  // namespace stowra

#endif  // HOST_DEADLINE_H_

// SPDX-License-Identifier: MIT
// The calls of host code that are under way, and the threads that wait for their ends.

#ifndef COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_H_
#define COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_H_

#include <cstdint>
#include <mutex>

namespace ovrant {

// A call of host code. Lives on the stack around the call. Its target is the address of the
// observer or the gate that is called.
class Delivery {
 public:
  // Takes the lock that guards all deliveries of the process. It is never held while host code
  // runs.
  static std::unique_lock<std::mutex> Lock();

  // Begins a call of `target` and releases `lock`.
  Delivery(const void* target, std::unique_lock<std::mutex>& lock);
  // Takes `lock` again and ends the call.
  ~Delivery();

  Delivery(const Delivery&) = delete;
  Delivery& operator=(const Delivery&) = delete;

  // Waits for the calls of `target` on other threads. `lock` must be held, and is released while
  // the thread waits. True if no call is left on any thread.
  //
  // Does not wait for a thread that already waits here. So a thread waits only for threads that
  // began to wait later, and no circle of waits can close. Does not wait at all in a NoWaitScope.
  static bool WaitForOthers(const void* target, std::unique_lock<std::mutex>& lock);

 private:
  struct State;

  const void* const target_;
  std::unique_lock<std::mutex>& lock_;
  const std::uint64_t& wait_of_thread_;
  Delivery* next_;
};

// While one lives, its thread waits for no call on another thread.
class NoWaitScope {
 public:
  NoWaitScope();
  ~NoWaitScope();

  NoWaitScope(const NoWaitScope&) = delete;
  NoWaitScope& operator=(const NoWaitScope&) = delete;
};

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_NOTIFY_DELIVERY_H_

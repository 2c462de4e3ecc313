// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/notify/delivery.h"

#include <condition_variable>
#include <cstddef>
#include <limits>
#include <new>

namespace ovrant {

namespace {

// Later than every wait.
constexpr auto kNoWait = std::numeric_limits<std::uint64_t>::max();

// Numbers the wait of the thread. The lock guards it, because other threads read it.
thread_local std::uint64_t wait_of_this_thread = kNoWait;

thread_local int no_wait_scopes = 0;

}  // namespace

// Guarded by the lock. Never destroyed, so static destructors can use it. Needs no memory, so no
// removal fails.
struct Delivery::State {
  static State& Instance() {
    alignas(State) static std::byte place[sizeof(State)];
    static auto* const state = new (place) State;
    return *state;
  }

  // True if a thread whose wait comes after `wait` calls `target`.
  bool IsCalled(const void* target, std::uint64_t wait) const {
    for (const Delivery* call = calls; call != nullptr; call = call->next_) {
      if (call->target_ == target && call->wait_of_thread_ > wait) return true;
    }
    return false;
  }

  std::mutex mutex;
  std::condition_variable call_ended;
  Delivery* calls = nullptr;
  std::uint64_t last_wait = 0;
};

std::unique_lock<std::mutex> Delivery::Lock() {
  return std::unique_lock<std::mutex>(State::Instance().mutex);
}

Delivery::Delivery(const void* target, std::unique_lock<std::mutex>& lock)
    : target_(target), lock_(lock), wait_of_thread_(wait_of_this_thread) {
  State& state = State::Instance();
  next_ = state.calls;
  state.calls = this;
  lock_.unlock();
}

Delivery::~Delivery() {
  State& state = State::Instance();
  lock_.lock();
  Delivery** link = &state.calls;
  while (*link != this) link = &(*link)->next_;
  *link = next_;
  state.call_ended.notify_all();
}

bool Delivery::WaitForOthers(const void* target, std::unique_lock<std::mutex>& lock) {
  State& state = State::Instance();
  if (no_wait_scopes == 0) {
    wait_of_this_thread = ++state.last_wait;
    state.call_ended.wait(lock, [&] { return !state.IsCalled(target, wait_of_this_thread); });
    wait_of_this_thread = kNoWait;
  }
  return !state.IsCalled(target, 0);
}

NoWaitScope::NoWaitScope() { ++no_wait_scopes; }
NoWaitScope::~NoWaitScope() { --no_wait_scopes; }

}  // namespace ovrant

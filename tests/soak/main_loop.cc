// SPDX-License-Identifier: MIT
#include "tests/soak/main_loop.h"

#include <utility>

namespace stowra_test {
namespace {

constexpr int kMostAtOnce = 8;
constexpr std::chrono::milliseconds kLongestWait(1);

}  // namespace

void MainLoop::Post(Function completion, Clock::time_point due) {
  const std::lock_guard<std::mutex> lock(mutex_);
  entries_.push_back({std::move(completion), due});
  posted_.notify_one();
}

void MainLoop::RunSome(Random& random) {
  {
    std::unique_lock<std::mutex> lock(mutex_);
    if (entries_.empty()) posted_.wait_for(lock, kLongestWait);
  }
  for (int i = 0; i < kMostAtOnce; ++i) {
    const Function completion = TakeDue(random);
    if (!completion) return;
    completion();
    tally.completions_run.Add();
  }
}

bool MainLoop::IsEmpty() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return entries_.empty();
}

MainLoop::Function MainLoop::TakeDue(Random& random) {
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

}  // namespace stowra_test

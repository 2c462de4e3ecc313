// SPDX-License-Identifier: MIT
#include "emulator/console/journal.h"

#include <utility>

namespace stowra_emulator {

void Journal::Add(JournalEntry entry) {
  const std::lock_guard<std::mutex> lock(mutex_);
  entry.id = ++last_id_;
  entries_.push_back(std::make_shared<const JournalEntry>(std::move(entry)));
  if (entries_.size() > kSize) entries_.pop_front();
  changed_.notify_all();
}

Journal::Entries Journal::WaitForEntries(std::uint64_t after, std::chrono::milliseconds timeout) {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait_for(lock, timeout, [this, after] { return is_closed_ || last_id_ > after; });
  Entries found;
  for (const auto& entry : entries_) {
    if (entry->id > after) found.push_back(entry);
  }
  return found;
}

std::uint64_t Journal::last_id() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return last_id_;
}

void Journal::Close() {
  const std::lock_guard<std::mutex> lock(mutex_);
  is_closed_ = true;
  changed_.notify_all();
}

bool Journal::is_closed() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return is_closed_;
}

}  // namespace stowra_emulator

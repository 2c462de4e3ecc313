// SPDX-License-Identifier: MIT
// The last requests, for the front page.

#ifndef EMULATOR_CONSOLE_JOURNAL_H_
#define EMULATOR_CONSOLE_JOURNAL_H_

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace stowra_emulator {

// One request and what was answered. Heads and bodies may be only their starts.
struct JournalEntry {
  std::uint64_t id = 0;  // From 1, set by the journal.
  std::chrono::system_clock::time_point time;
  std::chrono::milliseconds duration{0};
  std::string method;
  std::string target;
  int status = 0;
  std::string fault;  // Empty without one.
  std::string request_head;
  std::string request_body;
  std::string response_head;
  std::string response_body;     // Before it was compressed.
  std::uint64_t body_bytes = 0;  // Bytes of the response's body that were sent.
};

// Safe from any thread.
class Journal {
 public:
  using Entries = std::vector<std::shared_ptr<const JournalEntry>>;

  static constexpr std::size_t kSize = 200;

  void Add(JournalEntry entry);

  // The entries after the one with this id, the oldest first. Waits until there is one, the time is
  // over or the journal is closed.
  Entries WaitForEntries(std::uint64_t after, std::chrono::milliseconds timeout);

  std::uint64_t last_id() const;

  // Ends all waits, those to come too.
  void Close();
  bool is_closed() const;

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::shared_ptr<const JournalEntry>> entries_;
  std::uint64_t last_id_ = 0;
  bool is_closed_ = false;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_CONSOLE_JOURNAL_H_

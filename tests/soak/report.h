// SPDX-License-Identifier: MIT
// Counts what a soak does, and reports violations.

#ifndef TESTS_SOAK_REPORT_H_
#define TESTS_SOAK_REPORT_H_

#include <atomic>
#include <cstdint>
#include <random>
#include <string>

namespace stowra_test {

// Does not order memory between threads, so that it hides no data race from ThreadSanitizer.
class Counter {
 public:
  void Add(std::int64_t count = 1) { value_.fetch_add(count, std::memory_order_relaxed); }
  std::int64_t value() const { return value_.load(std::memory_order_relaxed); }

 private:
  std::atomic<std::int64_t> value_{0};
};

// The counts of the whole process.
struct Tally {
  // Requests, of all kinds together.
  Counter requests_created;
  Counter requests_started;
  Counter requests_retargeted;
  Counter requests_cleaned_up;
  Counter requests_deleted;
  Counter requests_deleted_by_observers;
  Counter requests_run_blocking;

  // Bare transports and delegates.
  Counter bare_created;
  Counter bare_started;
  Counter bare_restarted;
  Counter bare_deleted;
  Counter bare_deleted_inside;  // their own notification

  // Transfers of both kinds, in flight when deleted, cleaned up or restarted.
  Counter dropped_in_flight;

  Counter blocking_downloads;
  Counter blocking_uploads;
  Counter blocking_feeds;
  Counter blocking_configurations;

  Counter observers_added;
  Counter observers_removed;
  Counter observer_calls;  // of passing observers

  Counter executors;
  Counter listeners;
  Counter defaults;
  Counter completions_run;
  Counter completions_dropped;
  Counter listener_events;

  Counter transfer_posts;  // under the names of transfers
  Counter returned;        // those with a response
  Counter public_posted;
  Counter public_received;
  Counter never_posted;  // kept transfers that were given up
};

extern Tally tally;

// Prints `what` and makes the soak end soon and fail. Safe from any thread.
void Violate(const std::string& what);
bool IsViolated();

// Reports a violation unless `good`.
inline void Check(bool good, const char* what) {
  if (!good) Violate(what);
}

void PrintSummary(double seconds);

// Random numbers for one thread.
class Random {
 public:
  explicit Random(std::uint32_t seed) : engine_(seed) {}

  // A number below `count`.
  std::uint32_t Draw(std::uint32_t count) {
    return std::uniform_int_distribution<std::uint32_t>(0, count - 1)(engine_);
  }
  bool OneIn(std::uint32_t count) { return Draw(count) == 0; }

 private:
  std::mt19937 engine_;
};

}  // namespace stowra_test

#endif  // TESTS_SOAK_REPORT_H_

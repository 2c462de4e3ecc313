// What a soak did and saw, and what it must not see.

#ifndef TESTS_SOAK_REPORT_H_
#define TESTS_SOAK_REPORT_H_

#include <atomic>
#include <cstdint>
#include <random>
#include <string>

namespace stowra_test {

// Orders nothing between threads: counting must not hide what a thread sanitizer looks for.
class Counter {
 public:
  void Add(std::int64_t count = 1) { value_.fetch_add(count, std::memory_order_relaxed); }
  std::int64_t value() const { return value_.load(std::memory_order_relaxed); }

 private:
  std::atomic<std::int64_t> value_{0};
};

// One for the process.
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

  // Of both: in flight when deleted, cleaned up or started again.
  Counter dropped_in_flight;

  Counter blocking_downloads;
  Counter blocking_uploads;
  Counter blocking_feeds;
  Counter blocking_configurations;

  Counter observers_added;
  Counter observers_removed;
  Counter observer_calls;  // of those that come and go

  Counter executors;
  Counter listeners;
  Counter defaults;
  Counter completions_run;
  Counter completions_dropped;
  Counter listener_events;

  Counter transfer_posts;  // under the names of transfers
  Counter returned;        // of them
  Counter public_posted;
  Counter public_received;
  Counter never_posted;  // kept, and given up at last
};

extern Tally tally;

// Says what is wrong and makes the soak fail; the soak ends soon. Any thread.
void Violate(const std::string& what);
bool IsViolated();

// Violates unless `good`.
inline void Check(bool good, const char* what) {
  if (!good) Violate(what);
}

void PrintSummary(double seconds);

// A thread's own.
class Random {
 public:
  explicit Random(std::uint32_t seed) : engine_(seed) {}

  // Below `count`.
  std::uint32_t Draw(std::uint32_t count) {
    return std::uniform_int_distribution<std::uint32_t>(0, count - 1)(engine_);
  }
  bool OneIn(std::uint32_t count) { return Draw(count) == 0; }

 private:
  std::mt19937 engine_;
};

}  // namespace stowra_test

#endif  // TESTS_SOAK_REPORT_H_

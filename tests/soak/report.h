// SPDX-License-Identifier: MIT
// Counts what a soak does and uses, and reports violations.

#ifndef TESTS_SOAK_REPORT_H_
#define TESTS_SOAK_REPORT_H_

#include <atomic>
#include <cstddef>
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

// A line of the summary, which has them in the order of construction.
class NamedCounter : public Counter {
 public:
  explicit NamedCounter(const char* name);
};

// The counts of the whole process.
struct Tally {
  // Requests, of all kinds together.
  NamedCounter requests_created{"requests created"};
  NamedCounter requests_started{"requests started"};
  NamedCounter requests_retargeted{"requests restarted with another URL"};
  NamedCounter requests_cleaned_up{"requests cleaned up"};
  NamedCounter requests_deleted{"requests deleted"};
  NamedCounter requests_deleted_by_observers{"requests deleted by observers"};
  NamedCounter requests_run_blocking{"requests run blocking"};

  // Bare transports and delegates.
  NamedCounter bare_created{"transports created"};
  NamedCounter bare_started{"transports started"};
  NamedCounter bare_restarted{"transports restarted"};
  NamedCounter bare_deleted{"transports deleted"};
  NamedCounter bare_deleted_inside{"transports deleted in their notification"};

  // Transfers of both kinds, in flight when deleted, cleaned up or restarted.
  NamedCounter dropped_in_flight{"transfers dropped in flight"};

  NamedCounter blocking_downloads{"blocking downloads"};
  NamedCounter blocking_uploads{"blocking uploads"};
  NamedCounter blocking_feeds{"blocking feeds"};
  NamedCounter blocking_configurations{"blocking configurations"};

  // Passing observers.
  NamedCounter observers_added{"observers added"};
  NamedCounter observers_removed{"observers removed"};
  NamedCounter observer_calls{"observer calls"};

  NamedCounter executors{"executors set"};
  NamedCounter listeners{"listeners set"};
  NamedCounter defaults{"defaults set"};
  NamedCounter completions_run{"completions run"};
  NamedCounter completions_dropped{"completions dropped"};
  NamedCounter listener_events{"listener events"};

  NamedCounter transfer_posts{"transfers posted"};
  NamedCounter returned{"transfers posted with a response"};
  NamedCounter public_posted{"public notifications posted"};
  NamedCounter public_received{"public notifications received"};
  NamedCounter never_posted{"transfers given up after a drop"};
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

int CountOpenDescriptors();

// Bytes allocated and not freed, or 0 if the platform cannot tell.
std::size_t LiveHeapBytes();

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

// SPDX-License-Identifier: MIT
#include "tests/soak/report.h"

#include <cstdio>

namespace stowra_test {
namespace {

std::atomic<int> violations{0};
constexpr int kMostPrinted = 20;

void Print(const char* name, const Counter& counter) {
  std::printf("  %-40s %12lld\n", name, static_cast<long long>(counter.value()));
}

}  // namespace

Tally tally;

void Violate(const std::string& what) {
  if (violations.fetch_add(1) < kMostPrinted) {
    std::fprintf(stderr, "soak: violation: %s\n", what.c_str());
  }
}

bool IsViolated() { return violations.load(std::memory_order_relaxed) > 0; }

void PrintSummary(double seconds) {
  std::printf("%.1f seconds\n", seconds);
  Print("requests created", tally.requests_created);
  Print("requests started", tally.requests_started);
  Print("requests restarted with another URL", tally.requests_retargeted);
  Print("requests cleaned up", tally.requests_cleaned_up);
  Print("requests deleted", tally.requests_deleted);
  Print("requests deleted by observers", tally.requests_deleted_by_observers);
  Print("requests run blocking", tally.requests_run_blocking);
  Print("transports created", tally.bare_created);
  Print("transports started", tally.bare_started);
  Print("transports restarted", tally.bare_restarted);
  Print("transports deleted", tally.bare_deleted);
  Print("transports deleted in their notification", tally.bare_deleted_inside);
  Print("transfers dropped in flight", tally.dropped_in_flight);
  Print("blocking downloads", tally.blocking_downloads);
  Print("blocking uploads", tally.blocking_uploads);
  Print("blocking feeds", tally.blocking_feeds);
  Print("blocking configurations", tally.blocking_configurations);
  Print("observers added", tally.observers_added);
  Print("observers removed", tally.observers_removed);
  Print("observer calls", tally.observer_calls);
  Print("executors set", tally.executors);
  Print("listeners set", tally.listeners);
  Print("defaults set", tally.defaults);
  Print("completions run", tally.completions_run);
  Print("completions dropped", tally.completions_dropped);
  Print("listener events", tally.listener_events);
  Print("transfers posted", tally.transfer_posts);
  Print("transfers posted with a response", tally.returned);
  Print("public notifications posted", tally.public_posted);
  Print("public notifications received", tally.public_received);
  Print("transfers given up after a drop", tally.never_posted);
  std::printf("violations: %d\n", violations.load());
}

}  // namespace stowra_test

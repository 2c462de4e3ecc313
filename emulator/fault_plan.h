// SPDX-License-Identifier: MIT
// Faults for requests that do not ask for one.

#ifndef EMULATOR_FAULT_PLAN_H_
#define EMULATOR_FAULT_PLAN_H_

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "emulator/fault.h"
#include "emulator/random_stream.h"

namespace stowra_emulator {

// A fault for some of the requests to one route.
struct FaultRule {
  static constexpr const char* kEveryRoute = "*";

  std::string route;  // A path, or kEveryRoute.
  Fault fault;
  int percent = 100;  // Of the requests, from 1 to 100.

  // As ParseFaultRule reads it.
  std::string ToString() const;
};

// Reads ROUTE=KIND[:VALUE][@PERCENT], such as "/update=status:503@25". `routes` are the paths that
// exist, or empty if any path may. Throws std::invalid_argument with a text that lists what exists.
FaultRule ParseFaultRule(std::string_view text, const std::vector<std::string>& routes);

// The rules in force. Safe from any thread.
class FaultPlan {
 public:
  struct Entry {
    int id;
    FaultRule rule;
    bool is_on;
  };

  // With one seed, the n-th request that a rule meets gets the same fault in every run.
  explicit FaultPlan(std::uint64_t seed) : seed_(seed) {}

  // The fault for the next request to `path`. The first rule that strikes decides.
  Fault Draw(std::string_view path);

  void Add(const FaultRule& rule);

  // Each ignores an id that does not exist.
  void Switch(int id, bool is_on);
  void Remove(int id);

  std::vector<Entry> Entries() const;

 private:
  struct Slot {
    Entry entry;
    RandomStream random;
  };

  Slot* Find(int id);

  const std::uint64_t seed_;
  mutable std::mutex mutex_;
  std::vector<Slot> slots_;
  int next_id_ = 1;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_FAULT_PLAN_H_

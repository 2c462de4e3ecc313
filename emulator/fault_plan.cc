// SPDX-License-Identifier: MIT
#include "emulator/fault_plan.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <stdexcept>
#include <system_error>

namespace stowra_emulator {
namespace {

constexpr int kAlways = 100;

std::string Quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

std::optional<int> ParsePercent(std::string_view digits) {
  int percent = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, percent);
  const bool is_readable = error == std::errc() && stop == end && percent >= 1;
  return is_readable && percent <= kAlways ? std::optional(percent) : std::nullopt;
}

void CheckRoute(const std::string& route, const std::vector<std::string>& routes) {
  if (route == FaultRule::kEveryRoute) return;
  if (routes.empty()) {
    if (route.front() != '/') throw std::invalid_argument("a route begins with '/'");
    return;
  }
  if (std::find(routes.begin(), routes.end(), route) != routes.end()) return;
  std::string known = FaultRule::kEveryRoute;
  for (const std::string& path : routes) known += ", " + path;
  throw std::invalid_argument("no route " + Quoted(route) + "; the routes are: " + known);
}

}  // namespace

std::string FaultRule::ToString() const {
  std::string text = route + "=" + fault.text;
  if (percent != kAlways) text += "@" + std::to_string(percent);
  return text;
}

FaultRule ParseFaultRule(std::string_view text, const std::vector<std::string>& routes) {
  const std::size_t equals = text.rfind('=');
  if (equals == std::string_view::npos || equals == 0) {
    throw std::invalid_argument(Quoted(text) + " is not ROUTE=KIND[:VALUE][@PERCENT]");
  }
  FaultRule rule;
  rule.route = text.substr(0, equals);
  CheckRoute(rule.route, routes);
  std::string_view fault_text = text.substr(equals + 1);
  const std::size_t at = fault_text.find('@');
  if (at != std::string_view::npos) {
    const std::optional<int> percent = ParsePercent(fault_text.substr(at + 1));
    if (!percent) {
      throw std::invalid_argument(Quoted(fault_text.substr(at)) +
                                  " is not a percentage from @1 to @100");
    }
    rule.percent = *percent;
    fault_text = fault_text.substr(0, at);
  }
  const std::optional<Fault> fault = ParseFault(fault_text);
  if (!fault) {
    throw std::invalid_argument("no fault " + Quoted(fault_text) +
                                "; the faults are: " + FaultUsages());
  }
  rule.fault = *fault;
  return rule;
}

Fault FaultPlan::Draw(std::string_view path) {
  const std::lock_guard<std::mutex> lock(mutex_);
  for (Slot& slot : slots_) {
    const FaultRule& rule = slot.entry.rule;
    const bool is_met =
        slot.entry.is_on && (rule.route == path || rule.route == FaultRule::kEveryRoute);
    if (is_met && slot.random.Pick(kAlways) < static_cast<std::size_t>(rule.percent)) {
      return rule.fault;
    }
  }
  return Fault();
}

void FaultPlan::Add(const FaultRule& rule) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const int id = next_id_++;
  // The id lets two equal rules differ.
  const std::string seed = std::to_string(seed_) + "/" + std::to_string(id) + "/" + rule.ToString();
  slots_.push_back({{id, rule, true}, RandomStream(seed)});
}

void FaultPlan::Switch(int id, bool is_on) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Slot* slot = Find(id);
  if (slot != nullptr) slot->entry.is_on = is_on;
}

void FaultPlan::Remove(int id) {
  const std::lock_guard<std::mutex> lock(mutex_);
  slots_.erase(std::remove_if(slots_.begin(), slots_.end(),
                              [id](const Slot& slot) { return slot.entry.id == id; }),
               slots_.end());
}

std::vector<FaultPlan::Entry> FaultPlan::Entries() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::vector<Entry> entries;
  for (const Slot& slot : slots_) entries.push_back(slot.entry);
  return entries;
}

FaultPlan::Slot* FaultPlan::Find(int id) {
  const auto found = std::find_if(slots_.begin(), slots_.end(),
                                  [id](const Slot& slot) { return slot.entry.id == id; });
  return found == slots_.end() ? nullptr : &*found;
}

}  // namespace stowra_emulator

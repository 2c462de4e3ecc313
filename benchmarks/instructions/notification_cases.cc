// SPDX-License-Identifier: MIT
#include <memory>

#include "benchmarks/instructions/case.h"
#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"

namespace stowra_bench {
namespace {

class Counter : public ovrant::IObserver {
 public:
  void OnNotification(const char* /*name*/, void* /*payload*/) override { ++count; }
  using IObserver::OnNotification;

  int count = 0;
};

// Registers one observer of its own name, and many of other names, for its lifetime.
class Crowd {
 public:
  Crowd() : others_(kOthers) {
    for (int i = 0; i < kNames; ++i) names_.push_back("Notification" + std::to_string(i));
    for (int i = 0; i < kOthers; ++i) {
      center_.AddObserver(names_[static_cast<std::size_t>(i % kNames)].c_str(),
                          &others_[static_cast<std::size_t>(i)]);
    }
    center_.AddObserver(kOwnName, &observer_);
  }

  ~Crowd() {
    for (Counter& other : others_) center_.RemoveObserver(&other);
    center_.RemoveObserver(&observer_);
  }

  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;

  bool Send() {
    const int before = observer_.count;
    center_.SendNotification(kOwnName, nullptr);
    return observer_.count == before + 1;
  }

 private:
  static constexpr int kNames = 1000;
  static constexpr int kOthers = 10000;
  static constexpr const char* kOwnName = "UpdateQueryAsyncSucceeded";

  CNotificationCenter& center_ = *CNotificationCenter::Default();
  std::vector<std::string> names_;
  std::vector<Counter> others_;
  Counter observer_;
};

}  // namespace

void AddNotificationCases(Cases& cases) {
  const auto crowd = std::make_shared<Crowd>();
  cases.push_back({"SendNotification/stowra/10000", [crowd] { return crowd->Send(); }});
}

}  // namespace stowra_bench

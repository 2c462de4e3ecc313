// SPDX-License-Identifier: MIT
// Adds and removes observers while notifications are sent.

#ifndef TESTS_SOAK_PASSING_OBSERVERS_H_
#define TESTS_SOAK_PASSING_OBSERVERS_H_

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"
#include "tests/soak/main_loop.h"
#include "tests/soak/report.h"
#include "tests/soak/requests.h"

namespace stowra_test {

// Observes the public names, a name that all such observers observe and, if `observes_own`, a name
// that only its owner sends.
class PassingObserver final : public ovrant::IObserver {
 public:
  static constexpr char kSharedName[] = "SoakShared";

  // With `removes_itself`, it does so in its first call under its own name.
  PassingObserver(const char* own_name, bool observes_own, bool removes_itself,
                  const MainLoop& loop)
      : own_name_(own_name),
        observes_own_(observes_own),
        removes_itself_(removes_itself),
        loop_(loop) {
    CNotificationCenter* const center = CNotificationCenter::Default();
    if (observes_own_) center->AddObserver(own_name, this);
    center->AddObserver(kSharedName, this);
    for (const char* name : PublicNames()) center->AddObserver(name, this);
    tally.observers_added.Add();
  }
  // No call may come once the removal has returned.
  ~PassingObserver() override {
    CNotificationCenter::Default()->RemoveObserver(this);
    is_gone_.store(true, std::memory_order_relaxed);
    tally.observers_removed.Add();
  }

  PassingObserver(const PassingObserver&) = delete;
  PassingObserver& operator=(const PassingObserver&) = delete;

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* name, void* payload) override {
    if (is_gone_.load(std::memory_order_relaxed))
      Violate("an observer was called after its removal");
    tally.observer_calls.Add();
    if (std::strcmp(name, kSharedName) == 0) return Linger();
    if (std::strcmp(name, own_name_) == 0) {
      Check(payload == own_name_, "a notification has a wrong payload");
      ++own_calls_;
      // These members belong to the sending thread.
      if (!removes_itself_) return;
      CNotificationCenter::Default()->RemoveObserver(this);
      has_removed_itself_ = true;
    } else {
      Check(loop_.IsThisThread() && payload == nullptr,
            "a public notification is on a wrong thread or has a payload");
    }
  }

  // The number of calls under its own name. Only for the sending thread.
  int own_calls() const { return own_calls_; }
  bool expects_own() const { return observes_own_ && !has_removed_itself_; }

 private:
  // Gives another thread time to remove the observer during the call.
  void Linger() {
    std::this_thread::sleep_for(std::chrono::microseconds(1));
    if (is_gone_.load(std::memory_order_relaxed)) Violate("a removal did not wait for a call");
  }

  const char* const own_name_;
  const bool observes_own_;
  const bool removes_itself_;
  const MainLoop& loop_;
  int own_calls_ = 0;
  bool has_removed_itself_ = false;
  std::atomic<bool> is_gone_{false};
};

// Works with such observers on its own thread, from construction to destruction.
class PassingObservers {
 public:
  PassingObservers(int index, const MainLoop& loop, std::uint32_t seed)
      : own_name_("SoakOwn" + std::to_string(index)),
        loop_(loop),
        random_(seed),
        thread_(&PassingObservers::Run, this) {}
  ~PassingObservers() {
    stopping_ = true;
    thread_.join();
  }

  PassingObservers(const PassingObservers&) = delete;
  PassingObservers& operator=(const PassingObservers&) = delete;

 private:
  static constexpr std::size_t kMostObservers = 12;
  static constexpr std::uint32_t kLongestPause = 600;  // microseconds

  void Run() {
    while (!stopping_ && !IsViolated()) {
      const std::uint32_t what = random_.Draw(4);
      if (observers_.empty() || (what == 0 && observers_.size() < kMostObservers)) {
        AddOne();
      } else if (what == 1) {
        RemoveOne();
      } else if (what == 2) {
        SendOwn();
      } else {
        CNotificationCenter::Default()->SendNotification(PassingObserver::kSharedName, nullptr);
      }
      std::this_thread::sleep_for(std::chrono::microseconds(random_.Draw(kLongestPause)));
    }
    observers_.clear();
  }

  void AddOne() {
    observers_.push_back(std::make_unique<PassingObserver>(own_name_.c_str(), random_.OneIn(2),
                                                           random_.OneIn(4), loop_));
  }

  void RemoveOne() {
    std::swap(observers_[random_.Draw(static_cast<std::uint32_t>(observers_.size()))],
              observers_.back());
    observers_.pop_back();
  }

  // Every observer of the name must be called once before the call returns, and no other observer.
  void SendOwn() {
    std::vector<int> expected;
    for (const auto& observer : observers_) {
      expected.push_back(observer->own_calls() + (observer->expects_own() ? 1 : 0));
    }
    CNotificationCenter::Default()->SendNotification(own_name_.c_str(), own_name_.data());
    for (std::size_t i = 0; i < observers_.size(); ++i) {
      Check(observers_[i]->own_calls() == expected[i],
            "an observer was not called as often as expected");
    }
  }

  std::string own_name_;
  const MainLoop& loop_;
  Random random_;
  std::vector<std::unique_ptr<PassingObserver>> observers_;
  std::atomic<bool> stopping_{false};
  std::thread thread_;
};

}  // namespace stowra_test

#endif  // TESTS_SOAK_PASSING_OBSERVERS_H_

// SPDX-License-Identifier: MIT
// Replaces the settings for all transfers while transfers run.

#ifndef TESTS_SOAK_SETTINGS_H_
#define TESTS_SOAK_SETTINGS_H_

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include "common_stowraapi/platform/internet_data.h"
#include "tests/soak/main_loop.h"
#include "tests/soak/report.h"

namespace stowra_test {

// Replaces completion executor, listener and defaults on its own thread, from construction to
// destruction. Every executor passes completions to the main loop, some of them late and in another
// order. If `drops_completions`, some executors drop a few.
class SettingsChanges {
 public:
  SettingsChanges(MainLoop& loop, std::uint32_t seed, bool drops_completions)
      : loop_(loop), random_(seed), drops_completions_(drops_completions) {
    ReplaceExecutor();
    ReplaceListener();
    ReplaceDefaults();
    thread_ = std::thread(&SettingsChanges::Run, this);
  }

  ~SettingsChanges() {
    stopping_ = true;
    thread_.join();
    InternetData::SetTransferListener(nullptr);
    listener_->is_retired = true;
    // For the transfers that still run: an executor that drops nothing.
    InternetData::SetCompletionExecutor([&loop = loop_](std::function<void()> completion) {
      loop.Post(std::move(completion), MainLoop::Clock::now());
    });
    executor_->is_retired = true;
  }

  SettingsChanges(const SettingsChanges&) = delete;
  SettingsChanges& operator=(const SettingsChanges&) = delete;

 private:
  using InternetData = ovrant::internet::InternetData;
  using TransferEvent = ovrant::internet::TransferEvent;

  static constexpr std::chrono::milliseconds kPace{5};

  // Seconds. Longer than the longest deletion that the soak allows. So a destructor that waits for
  // a silent server is seen.
  static constexpr float kLongTimeout = 8;
  static constexpr std::uint32_t kLongestDelay = 30;  // milliseconds
  static constexpr std::uint32_t kOneDroppedOf = 200;

  // Only the library's thread calls it.
  struct Executor {
    Executor(MainLoop& main_loop, std::uint32_t seed, bool drops) : loop(main_loop), random(seed) {
      is_late = random.OneIn(2);
      is_dropping = drops && random.OneIn(2);
    }

    void Call(std::function<void()> completion) {
      if (is_retired) Violate("an executor was called after it had been replaced");
      if (is_dropping && random.OneIn(kOneDroppedOf)) {
        tally.completions_dropped.Add();
        return;
      }
      // Random delays let completions overtake each other.
      const std::chrono::milliseconds delay(is_late ? random.Draw(kLongestDelay) : 0);
      loop.Post(std::move(completion), MainLoop::Clock::now() + delay);
    }

    MainLoop& loop;
    Random random;
    bool is_late;
    bool is_dropping;
    std::atomic<bool> is_retired{false};
  };

  // Every thread that runs transfers calls it.
  struct Listener {
    void Call(const TransferEvent& event) {
      if (is_retired.load(std::memory_order_relaxed)) {
        Violate("a listener was called after it had been replaced");
      }
      tally.listener_events.Add();
      if (event.kind == TransferEvent::Kind::kStarted) started.Add();
      if (event.kind == TransferEvent::Kind::kEnded) ended.Add();
      if (event.url.empty()) Violate("a listener event has no URL");
    }

    Counter started;
    Counter ended;
    std::atomic<bool> is_retired{false};
  };

  void Run() {
    while (!stopping_) {
      switch (random_.Draw(3)) {
        case 0:
          ReplaceExecutor();
          break;
        case 1:
          ReplaceListener();
          break;
        default:
          ReplaceDefaults();
      }
      std::this_thread::sleep_for(kPace);
    }
  }

  void ReplaceExecutor() {
    auto next = std::make_shared<Executor>(loop_, random_.Draw(UINT32_MAX), drops_completions_);
    InternetData::SetCompletionExecutor(
        [next](std::function<void()> completion) { next->Call(std::move(completion)); });
    if (executor_) executor_->is_retired = true;
    executor_ = std::move(next);
    tally.executors.Add();
  }

  void ReplaceListener() {
    auto next = std::make_shared<Listener>();
    InternetData::SetTransferListener([next](const TransferEvent& event) { next->Call(event); });
    if (listener_) {
      listener_->is_retired = true;
      Check(listener_->ended.value() <= listener_->started.value(),
            "a listener got more end events than start events");
    }
    listener_ = std::move(next);
    tally.listeners.Add();
  }

  void ReplaceDefaults() {
    ovrant::internet::TransferDefaults defaults;
    defaults.inactivity_timeout =
        random_.OneIn(8) ? kLongTimeout : 0.5F + static_cast<float>(random_.Draw(3)) / 4;
    // Some caps are smaller than the big bodies.
    if (random_.OneIn(4)) defaults.body_cap = 100'000 + random_.Draw(1'000'000);
    if (random_.OneIn(2)) defaults.user_agent = "soak";
    if (random_.OneIn(2)) defaults.extra_request_headers["X-Soak"] = "yes";
    InternetData::SetDefaults(defaults);
    tally.defaults.Add();
  }

  MainLoop& loop_;
  Random random_;
  const bool drops_completions_;
  std::shared_ptr<Executor> executor_;
  std::shared_ptr<Listener> listener_;
  std::atomic<bool> stopping_{false};
  std::thread thread_;
};

}  // namespace stowra_test

#endif  // TESTS_SOAK_SETTINGS_H_

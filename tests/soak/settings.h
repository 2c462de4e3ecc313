// SPDX-License-Identifier: MIT
// Replaces the settings for all transfers while transfers run.

#ifndef TESTS_SOAK_SETTINGS_H_
#define TESTS_SOAK_SETTINGS_H_

#include <atomic>
#include <memory>
#include <thread>

#include "tests/soak/main_loop.h"
#include "tests/soak/report.h"

namespace stowra_test {

// Replaces completion executor, listener and defaults on its own thread, from construction to
// destruction. Every executor passes completions to the main loop, some of them late and in another
// order. If `drops_completions`, some executors drop a few.
class SettingsChanges {
 public:
  SettingsChanges(MainLoop& loop, std::uint32_t seed, bool drops_completions);
  ~SettingsChanges();

  SettingsChanges(const SettingsChanges&) = delete;
  SettingsChanges& operator=(const SettingsChanges&) = delete;

 private:
  struct Executor;
  struct Listener;

  void Run();
  void ReplaceExecutor();
  void ReplaceListener();
  void ReplaceDefaults();

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

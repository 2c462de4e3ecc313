// SPDX-License-Identifier: MIT
// Adds and removes observers while notifications are sent.

#ifndef TESTS_SOAK_PASSING_OBSERVERS_H_
#define TESTS_SOAK_PASSING_OBSERVERS_H_

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/soak/main_loop.h"
#include "tests/soak/report.h"

namespace stowra_test {

// Works on its own thread, from construction to destruction. Its observers observe the public
// names, a name that only this object sends and a name that all such objects send.
class PassingObservers {
 public:
  PassingObservers(int index, const MainLoop& loop, std::uint32_t seed);
  ~PassingObservers();

  PassingObservers(const PassingObservers&) = delete;
  PassingObservers& operator=(const PassingObservers&) = delete;

 private:
  class Observer;

  void Run();
  void AddOne();
  void RemoveOne();
  void SendOwn();

  std::string own_name_;
  const MainLoop& loop_;
  Random random_;
  std::vector<std::unique_ptr<Observer>> observers_;
  std::atomic<bool> stopping_{false};
  std::thread thread_;
};

}  // namespace stowra_test

#endif  // TESTS_SOAK_PASSING_OBSERVERS_H_

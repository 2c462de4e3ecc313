// Observers that come and go.

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

// Adds, removes and destroys observers of the public names, of a name of its own and of one that
// all of these threads send, on a thread of its own, from its construction to its destruction.
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

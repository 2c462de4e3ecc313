// SPDX-License-Identifier: MIT
// Lets a command put its files in order when a signal ends the program.

#ifndef HOST_SIGNAL_WATCHER_H_
#define HOST_SIGNAL_WATCHER_H_

#include <csignal>

#include <atomic>
#include <functional>
#include <thread>

namespace stowra {

// While it lives, SIGHUP, SIGINT and SIGTERM do not end the program. They wait for Start, and then
// a thread calls a function for each. Ignored signals stay ignored. Belongs to the main thread.
// Make it before any other thread, since it blocks these signals for the threads that start later.
// One at a time in a process.
class SignalWatcher {
 public:
  using Action = std::function<void(int signal)>;

  SignalWatcher();
  ~SignalWatcher();

  SignalWatcher(const SignalWatcher&) = delete;
  SignalWatcher& operator=(const SignalWatcher&) = delete;

  // `action` runs on the watcher's thread. Call it once.
  void Start(Action action);

  // Ends the calls. Signals wait again, and are delivered after the destructor.
  void Stop();

  // Ends the program by `signal`. Only inside the action, or after Stop.
  static void DieOf(int signal);

 private:
  void Watch();

  Action action_;
  sigset_t signals_;      // the watcher waits for these
  sigset_t former_mask_;  // of the main thread
  std::atomic<bool> is_over_ = false;
  std::thread thread_;
};

}  // namespace stowra

#endif  // HOST_SIGNAL_WATCHER_H_

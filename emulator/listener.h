// SPDX-License-Identifier: MIT
// The listening socket.

#ifndef EMULATOR_LISTENER_H_
#define EMULATOR_LISTENER_H_

#include <atomic>
#include <functional>
#include <list>
#include <thread>

#include "emulator/file_descriptor.h"
#include "emulator/socket_address.h"
#include "emulator/stop_event.h"

namespace stowra_emulator {

// Accepts connections and serves each on its own thread. A slow client blocks no
// other.
class Listener {
 public:
  using Serve = std::function<void(FileDescriptor)>;

  // Listens on `address`, on any free port if it has none. Makes the process ignore SIGPIPE.
  // `serve` runs on many threads at once and must return soon after `stop` is set. `stop` must
  // outlive this object. Throws std::system_error if it cannot listen.
  Listener(const SocketAddress& address, const StopEvent& stop, Serve serve);

  // Waits for all threads. Requires that `stop` is set.
  ~Listener();

  // With the port that was taken.
  const SocketAddress& address() const { return address_; }

 private:
  struct Worker {
    std::thread thread;
    std::atomic<bool> finished{false};
  };

  void AcceptAll();
  void StartWorker(FileDescriptor client);
  void JoinFinishedWorkers();

  FileDescriptor socket_;
  const SocketAddress address_;
  const StopEvent& stop_;
  const Serve serve_;
  std::list<Worker> workers_;  // Used by the accepting thread, then by the destructor.
  std::thread accepting_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_LISTENER_H_

// The listening socket.

#ifndef EMULATOR_LISTENER_H_
#define EMULATOR_LISTENER_H_

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <thread>

#include "emulator/file_descriptor.h"
#include "emulator/stop_event.h"

namespace stowra_emulator {

// Accepts connections on 127.0.0.1 and serves each on a thread of its own, so that a slow one holds
// up no other.
class Listener {
 public:
  using Serve = std::function<void(FileDescriptor)>;

  // Listens on `port`, on any free one if it is 0, and makes the process ignore SIGPIPE. `serve`
  // runs on many threads at once, and must return soon after `stop` is set. Throws
  // std::system_error when the port cannot be had.
  Listener(std::uint16_t port, const StopEvent& stop, Serve serve);

  // Waits for all threads; `stop` must be set.
  ~Listener();

  std::uint16_t port() const { return port_; }

 private:
  struct Worker {
    std::thread thread;
    std::atomic<bool> finished{false};
  };

  void AcceptAll();
  void StartWorker(FileDescriptor client);
  void JoinFinishedWorkers();

  FileDescriptor socket_;
  std::uint16_t port_ = 0;
  const StopEvent& stop_;
  const Serve serve_;
  std::list<Worker> workers_;  // Of the accepting thread, and of the destructor after it.
  std::thread accepting_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_LISTENER_H_

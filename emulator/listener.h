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

// Accepts connections on 127.0.0.1 and serves each on its own thread. A slow client blocks no
// other.
class Listener {
 public:
  using Serve = std::function<void(FileDescriptor)>;

  // Listens on `port`, or on any free port if it is 0. Makes the process ignore SIGPIPE. `serve`
  // runs on many threads at once and must return soon after `stop` is set. `stop` must outlive this
  // object. Throws std::system_error if it cannot listen.
  Listener(std::uint16_t port, const StopEvent& stop, Serve serve);

  // Waits for all threads. Requires that `stop` is set.
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
  std::list<Worker> workers_;  // Used by the accepting thread, then by the destructor.
  std::thread accepting_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_LISTENER_H_

// How every thread of the emulator learns that it is to stop.

#ifndef EMULATOR_STOP_EVENT_H_
#define EMULATOR_STOP_EVENT_H_

#include <chrono>

#include "emulator/file_descriptor.h"

namespace stowra_emulator {

// Set once and for good. All waiting in the emulator is done here, so nothing outlasts it.
// Safe from any thread.
class StopEvent {
 public:
  enum class Outcome { kReady, kTimedOut, kStopped };

  // Throws std::system_error when there is no descriptor left.
  StopEvent();

  void Set();

  // Waits until `fd` is ready for one of `events` (as of poll), broken or hung up. With a negative
  // `fd` only time passes.
  Outcome Wait(int fd, short events, std::chrono::milliseconds timeout) const;

 private:
  FileDescriptor read_end_;
  FileDescriptor write_end_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_STOP_EVENT_H_

// SPDX-License-Identifier: MIT
// Tells every thread of the emulator to stop.

#ifndef EMULATOR_STOP_EVENT_H_
#define EMULATOR_STOP_EVENT_H_

#include <chrono>

#include "emulator/file_descriptor.h"

namespace stowra_emulator {

// Stays set once it is set. Every wait in the emulator uses it, so no wait goes on after it. Safe
// from any thread.
class StopEvent {
 public:
  enum class Outcome { kReady, kTimedOut, kStopped };

  // Throws std::system_error if the system has no more descriptors.
  StopEvent();

  void Set();

  // Waits until `fd` is ready for one of `events` (as in poll), broken or hung up. With a negative
  // `fd` it waits only for the timeout or the stop.
  Outcome Wait(int fd, short events, std::chrono::milliseconds timeout) const;

 private:
  FileDescriptor read_end_;
  FileDescriptor write_end_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_STOP_EVENT_H_

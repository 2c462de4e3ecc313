// SPDX-License-Identifier: MIT
#include "emulator/stop_event.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <system_error>

namespace stowra_emulator {

StopEvent::StopEvent() {
  int ends[2];
  if (::pipe(ends) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  read_end_ = FileDescriptor(ends[0]);
  write_end_ = FileDescriptor(ends[1]);
  write_end_.SetNonBlocking();
}

void StopEvent::Set() {
  // Nobody reads the byte, so the pipe stays readable for every thread. If the pipe is full, the
  // event is already set.
  const char byte = 0;
  while (::write(write_end_.get(), &byte, 1) < 0 && errno == EINTR) {
  }
}

StopEvent::Outcome StopEvent::Wait(int fd, short events, std::chrono::milliseconds timeout) const {
  using std::chrono::milliseconds;
  using std::chrono::steady_clock;
  const auto deadline = steady_clock::now() + timeout;
  pollfd watched[] = {{read_end_.get(), POLLIN, 0}, {fd, events, 0}};
  while (true) {
    const auto left = std::clamp(std::chrono::ceil<milliseconds>(deadline - steady_clock::now()),
                                 milliseconds(0), milliseconds(INT_MAX));
    const int ready = ::poll(watched, 2, static_cast<int>(left.count()));
    if (ready > 0) return watched[0].revents != 0 ? Outcome::kStopped : Outcome::kReady;
    if (ready < 0 && errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "poll");
    }
    if (steady_clock::now() >= deadline) return Outcome::kTimedOut;
  }
}

}  // namespace stowra_emulator

#include "common_stowraapi/platform/http/wake_pipe.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace ovrant::internet {

WakePipe::WakePipe() {
  if (pipe(ends_.data()) != 0) throw std::system_error(errno, std::generic_category());
  for (const int end : ends_) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(end, F_SETFL, O_NONBLOCK);
  }
}

WakePipe::~WakePipe() {
  for (const int end : ends_) close(end);
}

void WakePipe::Wake() {
  if (woken_.exchange(true)) return;
  const char byte = 0;
  // The pipe has room, because it never holds more than one byte.
  static_cast<void>(write(ends_[1], &byte, 1) == 1);
}

void WakePipe::Drain() {
  char byte = 0;
  // The byte goes first. A Wake between the two calls writes no byte, but the caller looks for work
  // only afterwards.
  static_cast<void>(read(ends_[0], &byte, 1) == 1);
  woken_.exchange(false);
}

}  // namespace ovrant::internet

#include "common_stowraapi/platform/wake_pipe.h"

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
  const char byte = 0;
  // A full pipe wakes as well as one byte more would.
  static_cast<void>(write(ends_[1], &byte, 1) == 1);
}

void WakePipe::Drain() {
  std::array<char, 64> bytes;
  while (read(ends_[0], bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size())) {
  }
}

}  // namespace ovrant::internet

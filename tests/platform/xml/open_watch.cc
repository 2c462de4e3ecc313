// SPDX-License-Identifier: MIT
#include "tests/platform/xml/open_watch.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

#if defined(__linux__)
#include <sys/inotify.h>
#endif

namespace stowra_test {
namespace {

int Checked(int result, const char* what) {
  if (result < 0) throw std::runtime_error(std::string("cannot ") + what);
  return result;
}

bool IsReadable(int descriptor) {
  pollfd entry = {descriptor, POLLIN, 0};
  return poll(&entry, 1, 0) == 1;
}

}  // namespace

#if defined(STOWRA_WATCHES_OPENED_FILES)

OpenWatch::OpenWatch(const std::filesystem::path& folder)
    : queue_(Checked(inotify_init1(IN_NONBLOCK | IN_CLOEXEC), "watch files")) {
  const auto watch = [this](const std::filesystem::path& path) {
    Checked(inotify_add_watch(queue_, path.c_str(), IN_OPEN | IN_ACCESS), "watch a folder");
  };
  watch(folder);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_directory()) watch(entry.path());
  }
  TakeCount();  // Looking for the folders opened them.
}

OpenWatch::~OpenWatch() { close(queue_); }

int OpenWatch::TakeCount() {
  int count = 0;
  char buffer[16 * 1024];
  for (ssize_t size = 0; (size = read(queue_, buffer, sizeof(buffer))) > 0;) {
    for (ssize_t offset = 0; offset < size;) {
      inotify_event event;
      std::memcpy(&event, buffer + offset, sizeof(event));
      ++count;
      offset += static_cast<ssize_t>(sizeof(event) + event.len);
    }
  }
  return count;
}

#endif

WorkingFolder::WorkingFolder(const std::filesystem::path& folder)
    : before_(std::filesystem::current_path()) {
  std::filesystem::current_path(folder);
}

WorkingFolder::~WorkingFolder() {
  std::error_code ignored;
  std::filesystem::current_path(before_, ignored);
}

SilentPort::SilentPort() : socket_(Checked(socket(AF_INET, SOCK_STREAM, 0), "make a socket")) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof(address);
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  Checked(bind(socket_, generic, size), "bind a socket");
  Checked(listen(socket_, 1), "listen");
  Checked(getsockname(socket_, generic, &size), "name a socket");
  number_ = ntohs(address.sin_port);
}

SilentPort::~SilentPort() { close(socket_); }

bool SilentPort::WasCalled() const { return IsReadable(socket_); }

}  // namespace stowra_test

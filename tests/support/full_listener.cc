// SPDX-License-Identifier: MIT
#include "tests/support/full_listener.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <stdexcept>

namespace stowra_test {
namespace {

// More than any system accepts into a backlog of 0.
constexpr int kMostConnections = 64;

// A connection on this machine that the queue accepts takes less than this.
constexpr int kMillisecondsToConnect = 200;

void Check(bool good) {
  if (!good) throw std::runtime_error("cannot fill a listening socket");
}

}  // namespace

FullListener::FullListener(const char* own_address, int port) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = inet_addr(own_address);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  socklen_t length = sizeof(address);
  auto* const any_address = reinterpret_cast<sockaddr*>(&address);
  sockets_.push_back(socket(AF_INET, SOCK_STREAM, 0));
  Check(bind(sockets_[0], any_address, length) == 0 && listen(sockets_[0], 0) == 0 &&
        getsockname(sockets_[0], any_address, &length) == 0);
  port_ = ntohs(address.sin_port);
  for (int i = 0; i < kMostConnections; ++i) {
    const int client = socket(AF_INET, SOCK_STREAM, 0);
    sockets_.push_back(client);
    fcntl(client, F_SETFL, O_NONBLOCK);
    if (connect(client, any_address, length) == 0) continue;
    Check(errno == EINPROGRESS);
    pollfd connected = {client, POLLOUT, 0};
    if (poll(&connected, 1, kMillisecondsToConnect) == 0) return;
  }
  Check(false);
}

FullListener::~FullListener() {
  for (const int each : sockets_) close(each);
}

std::string FullListener::Url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }

}  // namespace stowra_test

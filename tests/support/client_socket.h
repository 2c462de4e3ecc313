// SPDX-License-Identifier: MIT
// Looks at the client's end of a connection. The client is this process.

#ifndef TESTS_SUPPORT_CLIENT_SOCKET_H_
#define TESTS_SUPPORT_CLIENT_SOCKET_H_

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <chrono>

#include "tests/support/event.h"

namespace stowra_test {

// The client's end of a connection to `port` of this machine, or -1.
inline int ClientSocket(int port) {
  constexpr int kMostDescriptors = 1024;
  for (int socket = 0; socket < kMostDescriptors; ++socket) {
    sockaddr_in peer = {};
    socklen_t size = sizeof(peer);
    if (getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
        peer.sin_family == AF_INET && ntohs(peer.sin_port) == port) {
      return socket;
    }
  }
  return -1;
}

// Waits until bytes have arrived there. False after kPatience.
inline bool WaitForBytes(int port) {
  pollfd readable = {ClientSocket(port), POLLIN, 0};
  const auto limit = std::chrono::milliseconds(kPatience).count();
  return readable.fd >= 0 && poll(&readable, 1, static_cast<int>(limit)) == 1;
}

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_CLIENT_SOCKET_H_

// SPDX-License-Identifier: MIT
// Addresses to listen on.

#ifndef EMULATOR_SOCKET_ADDRESS_H_
#define EMULATOR_SOCKET_ADDRESS_H_

#include <sys/socket.h>

#include <cstdint>
#include <string>

namespace stowra_emulator {

// An IPv4 or IPv6 address with a port. A default one is 0.0.0.0 with port 0.
class SocketAddress {
 public:
  SocketAddress();

  // `host` is an IP address, such as "127.0.0.1" or "::1".
  // Throws std::runtime_error if it is anything else.
  SocketAddress(const std::string& host, std::uint16_t port);

  // The local address of a socket. A default one if the socket has none.
  static SocketAddress OfSocket(int socket);

  std::string host() const;
  std::uint16_t port() const;

  // As in a web address: "127.0.0.1:8080", "[::1]:8080".
  std::string ToString() const;

  int family() const { return storage_.ss_family; }
  const sockaddr* data() const { return reinterpret_cast<const sockaddr*>(&storage_); }
  socklen_t size() const { return size_; }

 private:
  sockaddr_storage storage_;
  socklen_t size_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_SOCKET_ADDRESS_H_

// SPDX-License-Identifier: MIT
#include "emulator/socket_address.h"

#include <netdb.h>
#include <netinet/in.h>

#include <array>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace stowra_emulator {

SocketAddress::SocketAddress() : storage_{}, size_(sizeof(sockaddr_in)) {
  storage_.ss_family = AF_INET;
}

SocketAddress::SocketAddress(const std::string& host, std::uint16_t port) : SocketAddress() {
  addrinfo hints = {};
  hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found) != 0) {
    throw std::runtime_error("'" + host + "' is not an IP address");
  }
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, ::freeaddrinfo);
  std::memcpy(&storage_, found->ai_addr, found->ai_addrlen);
  size_ = found->ai_addrlen;
}

SocketAddress SocketAddress::OfSocket(int socket) {
  SocketAddress address;
  socklen_t size = sizeof(address.storage_);
  if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address.storage_), &size) != 0) {
    return SocketAddress();
  }
  address.size_ = size;
  return address;
}

std::string SocketAddress::host() const {
  std::array<char, NI_MAXHOST> host = {};
  ::getnameinfo(data(), size_, host.data(), host.size(), nullptr, 0, NI_NUMERICHOST);
  return host.data();
}

std::uint16_t SocketAddress::port() const {
  const bool is_ipv6 = family() == AF_INET6;
  return ntohs(is_ipv6 ? reinterpret_cast<const sockaddr_in6*>(&storage_)->sin6_port
                       : reinterpret_cast<const sockaddr_in*>(&storage_)->sin_port);
}

std::string SocketAddress::ToString() const {
  const std::string brackets = family() == AF_INET6 ? "[" + host() + "]" : host();
  return brackets + ":" + std::to_string(port());
}

}  // namespace stowra_emulator

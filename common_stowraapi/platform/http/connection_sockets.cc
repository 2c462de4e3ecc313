// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/connection_sockets.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace ovrant::internet {

namespace {

// Reads an end's address with getsockname or getpeername. Its family is 0 for a socket without one.
sockaddr_storage AddressOf(int socket, int (*name_of)(int, sockaddr*, socklen_t*)) {
  sockaddr_storage address{};
  socklen_t size = sizeof(address);
  if (name_of(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) return {};
  return address;
}

int PortOf(const sockaddr_storage& address) {
  if (address.ss_family == AF_INET) {
    return ntohs(reinterpret_cast<const sockaddr_in&>(address).sin_port);
  }
  if (address.ss_family == AF_INET6) {
    return ntohs(reinterpret_cast<const sockaddr_in6&>(address).sin6_port);
  }
  return 0;
}

bool HasPeer(int socket, const char* ip) {
  const sockaddr_storage peer = AddressOf(socket, getpeername);
  const void* const bytes =
      peer.ss_family == AF_INET6
          ? static_cast<const void*>(&reinterpret_cast<const sockaddr_in6&>(peer).sin6_addr)
          : &reinterpret_cast<const sockaddr_in&>(peer).sin_addr;
  char text[INET6_ADDRSTRLEN] = "";
  return inet_ntop(peer.ss_family, bytes, text, sizeof(text)) != nullptr &&
         std::strcmp(text, ip) == 0;
}

}  // namespace

bool ConnectionSockets::Add(int socket, const void* opener) noexcept {
  try {
    sockets_.push_back({socket, 0, 0, false, opener, {}});
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void ConnectionSockets::Remove(int socket) noexcept {
  sockets_.erase(std::remove_if(sockets_.begin(), sockets_.end(),
                                [socket](const Entry& each) { return each.socket == socket; }),
                 sockets_.end());
}

void ConnectionSockets::Settle(const void* opener, int used) noexcept {
  for (Entry& entry : sockets_) {
    if (entry.socket == used) entry.opener = nullptr;
  }
  sockets_.erase(std::remove_if(sockets_.begin(), sockets_.end(),
                                [opener](const Entry& each) { return each.opener == opener; }),
                 sockets_.end());
}

int ConnectionSockets::Find(int local_port, const char* remote_ip, int remote_port) {
  for (Entry& entry : sockets_) {
    if (entry.local_port == 0) {
      entry.remote_port = PortOf(AddressOf(entry.socket, getpeername));
      if (entry.remote_port != 0) entry.local_port = PortOf(AddressOf(entry.socket, getsockname));
    }
    if (entry.local_port == local_port && entry.remote_port == remote_port &&
        HasPeer(entry.socket, remote_ip)) {
      return entry.socket;
    }
  }
  return kNone;
}

void ConnectionSockets::SetFramed(int socket) {
  for (Entry& entry : sockets_) {
    if (entry.socket == socket) entry.is_framed = true;
  }
}

std::string* ConnectionSockets::TlsOf(int socket) {
  for (Entry& entry : sockets_) {
    if (entry.socket == socket) return &entry.tls;
  }
  return nullptr;
}

bool ConnectionSockets::IsUnfit(int socket) const {
  const auto entry = std::find_if(sockets_.begin(), sockets_.end(),
                                  [socket](const Entry& each) { return each.socket == socket; });
  if (entry == sockets_.end() || entry->is_framed) return false;
  char byte = 0;
  return recv(socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT) >= 0;
}

std::size_t CountUnsentBytes(int socket) {
  int count = 0;
#if defined(SO_NWRITE)
  socklen_t size = sizeof(count);
  if (getsockopt(socket, SOL_SOCKET, SO_NWRITE, &count, &size) != 0) return 0;
#elif defined(TIOCOUTQ)
  if (ioctl(socket, TIOCOUTQ, &count) != 0) return 0;
#endif
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

bool IsAtEnd(int socket) {
  char byte = 0;
  return recv(socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 0;
}

}  // namespace ovrant::internet

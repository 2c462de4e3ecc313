// SPDX-License-Identifier: MIT
#include "fuzz/platform/http/fake_network.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include "fuzz/support/check.h"

namespace stowra_fuzz {
namespace {

FakeNetwork* network = nullptr;

// New descriptors get the lowest free number, so a number above this shows a leak. An idle client
// keeps a few connections.
constexpr int kHighestDescriptor = 80;

// Milliseconds. A name look-up on another thread polls more often.
constexpr int kLongWait = 1000;

constexpr int kFirstPort = 1000;

void MakeNonBlocking(int descriptor) {
  FUZZ_CHECK(fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK) == 0);
}

bool BeginsRequest(std::string_view bytes) {
  return bytes.substr(0, 4) == "GET " || bytes.substr(0, 5) == "POST ";
}

template <typename Function>
Function Original(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

sockaddr_in LoopbackAddress(int port) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  return address;
}

using NameOf = int (*)(int, sockaddr*, socklen_t*);

int GiveAddress(NameOf original, int descriptor, sockaddr* address, socklen_t* size) {
  const int port = network == nullptr ? 0 : network->PortOf(descriptor);
  if (port == 0) return original(descriptor, address, size);
  const sockaddr_in given = LoopbackAddress(port);
  std::memcpy(address, &given, std::min<std::size_t>(*size, sizeof(given)));
  *size = sizeof(given);
  return 0;
}

// A result of getaddrinfo with its address.
struct OwnedAddress {
  addrinfo info = {};
  sockaddr_in address = {};
};

}  // namespace

FakeNetwork::FakeNetwork(std::vector<ServerReply> replies) : replies_(std::move(replies)) {
  FUZZ_CHECK(network == nullptr);
  network = this;
}

FakeNetwork::~FakeNetwork() {
  for (const Connection& connection : connections_) close(connection.server);
  network = nullptr;
}

bool FakeNetwork::Connect(int client) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return false;
  FUZZ_CHECK(ends[1] <= kHighestDescriptor);
  MakeNonBlocking(ends[0]);
  MakeNonBlocking(ends[1]);
  FUZZ_CHECK(dup2(ends[0], client) == client);
  close(ends[0]);
  for (Connection& connection : connections_) {
    if (connection.client == client) connection.client = -1;  // closed, and its number reused
  }
  connections_.push_back({client, ends[1], true});
  return true;
}

int FakeNetwork::PortOf(int client) const {
  for (std::size_t i = 0; i < connections_.size(); ++i) {
    if (connections_[i].client == client) return kFirstPort + static_cast<int>(i);
  }
  return 0;
}

void FakeNetwork::OnSent(int client, const char* data, std::size_t size) {
  if (!BeginsRequest({data, size})) return;
  for (Connection& connection : connections_) {
    if (connection.client != client || !connection.is_open) continue;
    if (sent_ == replies_.size()) return Close(connection);
    const ServerReply& reply = replies_[sent_++];
    FUZZ_CHECK(write(connection.server, reply.bytes.data(), reply.bytes.size()) ==
               static_cast<ssize_t>(reply.bytes.size()));
    if (reply.closes) Close(connection);
  }
}

// False if all were closed already.
bool FakeNetwork::CloseAll() {
  bool was_open = false;
  for (Connection& connection : connections_) {
    was_open = was_open || connection.is_open;
    if (connection.is_open) Close(connection);
  }
  return was_open;
}

// Closes only the direction to the client, and still accepts what the client sends.
void FakeNetwork::Close(Connection& connection) {
  shutdown(connection.server, SHUT_WR);
  connection.is_open = false;
}

}  // namespace stowra_fuzz

// Replacements of C library functions.
extern "C" {

#define STOWRA_INSTEAD __attribute__((visibility("default")))

STOWRA_INSTEAD int connect(int descriptor, const sockaddr* address, socklen_t /*size*/) {
  const bool is_internet = address->sa_family == AF_INET || address->sa_family == AF_INET6;
  if (is_internet && stowra_fuzz::network != nullptr && stowra_fuzz::network->Connect(descriptor)) {
    return 0;
  }
  errno = ECONNREFUSED;
  return -1;
}

// Both ends have the connection's port.
STOWRA_INSTEAD int getsockname(int descriptor, sockaddr* address, socklen_t* size) noexcept {
  static const auto original = stowra_fuzz::Original<stowra_fuzz::NameOf>("getsockname");
  return stowra_fuzz::GiveAddress(original, descriptor, address, size);
}

STOWRA_INSTEAD int getpeername(int descriptor, sockaddr* address, socklen_t* size) noexcept {
  static const auto original = stowra_fuzz::Original<stowra_fuzz::NameOf>("getpeername");
  return stowra_fuzz::GiveAddress(original, descriptor, address, size);
}

STOWRA_INSTEAD ssize_t send(int descriptor, const void* data, size_t size, int flags) {
  using Send = ssize_t (*)(int, const void*, size_t, int);
  static const auto original = stowra_fuzz::Original<Send>("send");
  const ssize_t sent = original(descriptor, data, size, flags);
  if (sent > 0 && stowra_fuzz::network != nullptr) {
    stowra_fuzz::network->OnSent(descriptor, static_cast<const char*>(data),
                                 static_cast<std::size_t>(sent));
  }
  return sent;
}

// Nothing happens in this network by itself. A waiting client gets its connections closed, unless a
// name look-up is still running.
STOWRA_INSTEAD int poll(pollfd* descriptors, nfds_t count, int milliseconds) {
  using Poll = int (*)(pollfd*, nfds_t, int);
  static const auto original = stowra_fuzz::Original<Poll>("poll");
  const int ready = original(descriptors, count, 0);
  if (ready != 0 || milliseconds == 0) return ready;
  if (stowra_fuzz::network != nullptr) {
    if (stowra_fuzz::network->CloseAll()) {
      const int ready_now = original(descriptors, count, 0);
      if (ready_now != 0) return ready_now;
    }
  }
  const int ready_later = original(descriptors, count, milliseconds);
  const bool was_in_vain = ready_later == 0 && milliseconds >= stowra_fuzz::kLongWait;
  if (was_in_vain && stowra_fuzz::network != nullptr) stowra_fuzz::network->NoteWait();
  return ready_later;
}

// Every name resolves.
STOWRA_INSTEAD int getaddrinfo(const char* /*node*/, const char* service, const addrinfo* hints,
                               addrinfo** result) {
  if (hints != nullptr && hints->ai_family == AF_INET6) return EAI_NONAME;
  auto* const owned = new stowra_fuzz::OwnedAddress;
  owned->address = stowra_fuzz::LoopbackAddress(service == nullptr ? 0 : std::atoi(service));
  owned->info.ai_family = AF_INET;
  owned->info.ai_socktype = SOCK_STREAM;
  owned->info.ai_addrlen = sizeof(owned->address);
  owned->info.ai_addr = reinterpret_cast<sockaddr*>(&owned->address);
  *result = &owned->info;
  return 0;
}

STOWRA_INSTEAD void freeaddrinfo(addrinfo* result) noexcept {
  delete reinterpret_cast<stowra_fuzz::OwnedAddress*>(result);
}

}  // extern "C"

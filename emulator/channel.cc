// SPDX-License-Identifier: MIT
#include "emulator/channel.h"

#include <sys/socket.h>

#include <cerrno>

namespace stowra_emulator {
namespace {

ssize_t Outcome(ssize_t result, ssize_t if_blocked) {
  if (result >= 0) return result;
  const bool is_blocked = errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK;
  return is_blocked ? if_blocked : Channel::kFailed;
}

}  // namespace

ssize_t PlainChannel::Receive(char* data, std::size_t size) {
  return Outcome(::recv(socket_, data, size, 0), kWantsRead);
}

ssize_t PlainChannel::Peek(char* data, std::size_t size) {
  return Outcome(::recv(socket_, data, size, MSG_PEEK), kWantsRead);
}

ssize_t PlainChannel::Send(const char* data, std::size_t size) {
  return Outcome(::send(socket_, data, size, 0), kWantsWrite);
}

}  // namespace stowra_emulator

// SPDX-License-Identifier: MIT
#include "emulator/client_socket.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <utility>

#include "emulator/tls_channel.h"

namespace stowra_emulator {
namespace {

using WaitOutcome = StopEvent::Outcome;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// The longest time without a byte of a request or a response.
constexpr std::chrono::seconds kInactivityTimeout(30);

// The longest wait for the client to close its side.
constexpr std::chrono::seconds kLingerTimeout(1);

bool IsBlocked(ssize_t result) {
  return result == Channel::kWantsRead || result == Channel::kWantsWrite;
}

milliseconds Until(steady_clock::time_point deadline) {
  return std::chrono::ceil<milliseconds>(deadline - steady_clock::now());
}

std::unique_ptr<Channel> OpenChannel(int socket, SSL_CTX* tls) {
  if (tls == nullptr) return std::make_unique<PlainChannel>(socket);
  return std::make_unique<TlsChannel>(*tls, socket);
}

}  // namespace

ClientSocket::ClientSocket(FileDescriptor socket, const StopEvent& stop, SSL_CTX* tls)
    : socket_(std::move(socket)), stop_(stop), channel_(OpenChannel(socket_.get(), tls)) {
  socket_.SetNonBlocking();
  const int on = 1;
  ::setsockopt(socket_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
}

SocketAddress ClientSocket::LocalAddress() const { return SocketAddress::OfSocket(socket_.get()); }

bool ClientSocket::WaitReadable(milliseconds timeout) const {
  return channel_->HasBufferedInput() ||
         stop_.Wait(socket_.get(), POLLIN, timeout) == WaitOutcome::kReady;
}

// Waits before each attempt, so that a busy client cannot delay the stop.
ssize_t ClientSocket::Receive(char* data, std::size_t size) {
  if (!WaitReadable(kInactivityTimeout)) return -1;
  while (true) {
    const ssize_t received = channel_->Receive(data, size);
    if (!IsBlocked(received)) return received;
    if (!WaitFor(received)) return -1;
  }
}

bool ClientSocket::Send(const char* data, std::size_t size) {
  ssize_t sent = Channel::kWantsWrite;
  while (size > 0) {
    if (!WaitFor(IsBlocked(sent) ? sent : Channel::kWantsWrite)) return false;
    sent = channel_->Send(data, size);
    if (sent >= 0) {
      data += sent;
      size -= static_cast<std::size_t>(sent);
    } else if (!IsBlocked(sent)) {
      return false;
    }
  }
  return true;
}

bool ClientSocket::WaitFor(ssize_t wanted) const {
  const short events = wanted == Channel::kWantsRead ? POLLIN : POLLOUT;
  return stop_.Wait(socket_.get(), events, kInactivityTimeout) == WaitOutcome::kReady;
}

bool ClientSocket::Pause(milliseconds duration) const {
  const auto deadline = steady_clock::now() + duration;
  short events = channel_->HasBufferedInput() ? short{0} : POLLIN;
  while (true) {
    const WaitOutcome outcome = stop_.Wait(socket_.get(), events, Until(deadline));
    if (outcome != WaitOutcome::kReady) return outcome == WaitOutcome::kTimedOut;
    char next;
    const ssize_t peeked = channel_->Peek(&next, 1);
    if (peeked == 0 || peeked == Channel::kFailed) return false;
    if (IsBlocked(peeked)) continue;
    // The next request has arrived. From now on, wait only for a broken connection.
    if (std::exchange(events, short{0}) == 0) return false;
  }
}

void ClientSocket::Reset() {
  const linger no_linger = {1, 0};
  ::setsockopt(socket_.get(), SOL_SOCKET, SO_LINGER, &no_linger, sizeof(no_linger));
  socket_.Close();
}

void ClientSocket::Finish() {
  if (socket_.get() < 0) return;
  channel_->EndSending();
  ::shutdown(socket_.get(), SHUT_WR);
  const auto deadline = steady_clock::now() + kLingerTimeout;
  char ignored[4096];
  while (stop_.Wait(socket_.get(), POLLIN, Until(deadline)) == WaitOutcome::kReady) {
    const ssize_t received = ::recv(socket_.get(), ignored, sizeof(ignored), 0);
    const bool is_blocked = errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK;
    if (received == 0 || (received < 0 && !is_blocked)) break;
  }
  socket_.Close();
}

}  // namespace stowra_emulator

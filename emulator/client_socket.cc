#include "emulator/client_socket.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <utility>

namespace stowra_emulator {
namespace {

using Outcome = StopEvent::Outcome;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// The longest time without a byte of a request or a response.
constexpr std::chrono::seconds kInactivityTimeout(30);

// The longest wait for the client to close its side.
constexpr std::chrono::seconds kLingerTimeout(1);

bool WouldBlock() { return errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK; }

milliseconds Until(steady_clock::time_point deadline) {
  return std::chrono::ceil<milliseconds>(deadline - steady_clock::now());
}

}  // namespace

ClientSocket::ClientSocket(FileDescriptor socket, const StopEvent& stop)
    : socket_(std::move(socket)), stop_(stop) {
  socket_.SetNonBlocking();
  const int on = 1;
  ::setsockopt(socket_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
}

std::uint16_t ClientSocket::LocalPort() const {
  sockaddr_in address = {};
  socklen_t size = sizeof(address);
  if (::getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0) return 0;
  return ntohs(address.sin_port);
}

bool ClientSocket::WaitReadable(milliseconds timeout) const {
  return stop_.Wait(socket_.get(), POLLIN, timeout) == Outcome::kReady;
}

ssize_t ClientSocket::Receive(char* data, std::size_t size) {
  while (WaitReadable(kInactivityTimeout)) {
    const ssize_t received = ::recv(socket_.get(), data, size, 0);
    if (received >= 0 || !WouldBlock()) return received;
  }
  return -1;
}

bool ClientSocket::Send(const char* data, std::size_t size) {
  while (size > 0) {
    if (stop_.Wait(socket_.get(), POLLOUT, kInactivityTimeout) != Outcome::kReady) return false;
    const ssize_t sent = ::send(socket_.get(), data, size, 0);
    if (sent >= 0) {
      data += sent;
      size -= static_cast<std::size_t>(sent);
    } else if (!WouldBlock()) {
      return false;
    }
  }
  return true;
}

bool ClientSocket::Pause(milliseconds duration) const {
  const auto deadline = steady_clock::now() + duration;
  short events = POLLIN;
  while (true) {
    const Outcome outcome = stop_.Wait(socket_.get(), events, Until(deadline));
    if (outcome != Outcome::kReady) return outcome == Outcome::kTimedOut;
    char next;
    const ssize_t peeked = ::recv(socket_.get(), &next, 1, MSG_PEEK);
    if (peeked == 0 || (peeked < 0 && !WouldBlock())) return false;
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
  ::shutdown(socket_.get(), SHUT_WR);
  const auto deadline = steady_clock::now() + kLingerTimeout;
  char ignored[4096];
  while (stop_.Wait(socket_.get(), POLLIN, Until(deadline)) == Outcome::kReady) {
    const ssize_t received = ::recv(socket_.get(), ignored, sizeof(ignored), 0);
    if (received == 0 || (received < 0 && !WouldBlock())) break;
  }
  socket_.Close();
}

}  // namespace stowra_emulator

// SPDX-License-Identifier: MIT
#include "emulator/listener.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <string>
#include <system_error>
#include <utility>

namespace stowra_emulator {
namespace {

using Outcome = StopEvent::Outcome;

constexpr std::chrono::hours kNoTimeout(24);

// The pause after the system had no descriptor or memory for a connection.
constexpr std::chrono::milliseconds kAcceptRetry(50);

FileDescriptor Listen(const SocketAddress& address) {
  const auto fail = [&address](const char* what) {
    throw std::system_error(errno, std::generic_category(), what + (" " + address.ToString()));
  };
  FileDescriptor socket(::socket(address.family(), SOCK_STREAM, 0));
  if (socket.get() < 0) fail("cannot create a socket for");
  // Allows a port that a recent run used, but none that another program listens on.
  const int on = 1;
  ::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
  if (::bind(socket.get(), address.data(), address.size()) != 0 ||
      ::listen(socket.get(), SOMAXCONN) != 0) {
    fail("cannot listen on");
  }
  socket.SetNonBlocking();
  return socket;
}

}  // namespace

Listener::Listener(const SocketAddress& address, const StopEvent& stop, Serve serve)
    : socket_(Listen(address)),
      address_(SocketAddress::OfSocket(socket_.get())),
      stop_(stop),
      serve_(std::move(serve)) {
  // If a client has left, send then fails and the process goes on.
  std::signal(SIGPIPE, SIG_IGN);
  accepting_ = std::thread([this] { AcceptAll(); });
}

Listener::~Listener() {
  accepting_.join();
  for (Worker& worker : workers_) worker.thread.join();
}

void Listener::AcceptAll() {
  while (stop_.Wait(socket_.get(), POLLIN, kNoTimeout) != Outcome::kStopped) {
    FileDescriptor client(::accept(socket_.get(), nullptr, nullptr));
    if (client.get() >= 0) {
      JoinFinishedWorkers();
      StartWorker(std::move(client));
    } else if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) {
      stop_.Wait(-1, 0, kAcceptRetry);
    }
  }
}

void Listener::StartWorker(FileDescriptor client) {
  Worker& worker = workers_.emplace_back();
  try {
    worker.thread = std::thread([this, &worker, client = std::move(client)]() mutable {
      serve_(std::move(client));
      worker.finished = true;
    });
  } catch (const std::system_error&) {
    // The system has no more threads. The client sees its connection closed.
    workers_.pop_back();
  }
}

void Listener::JoinFinishedWorkers() {
  workers_.remove_if([](Worker& worker) {
    if (!worker.finished) return false;
    worker.thread.join();
    return true;
  });
}

}  // namespace stowra_emulator

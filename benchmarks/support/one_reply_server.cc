// SPDX-License-Identifier: MIT
#include "benchmarks/support/one_reply_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace stowra_bench {
namespace {

[[noreturn]] void Fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

int Listen() {
  const int listener = socket(AF_INET, SOCK_STREAM, 0);
  if (listener < 0) Fail("socket");
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
      listen(listener, 2) != 0) {
    Fail("listen");
  }
  return listener;
}

sockaddr_in AddressOf(int listener) {
  sockaddr_in address{};
  socklen_t length = sizeof(address);
  if (getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    Fail("getsockname");
  }
  return address;
}

// Connects to `listener` without a request.
void Nudge(int listener) {
  const sockaddr_in address = AddressOf(listener);
  const int connection = socket(AF_INET, SOCK_STREAM, 0);
  connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
  close(connection);
}

// Reads a request to the end of its headers and its body. False if the connection closes first.
bool ReadRequest(int connection) {
  constexpr char kLength[] = "Content-Length: ";
  std::string request;
  std::size_t wanted = std::string::npos;
  char buffer[4096];
  while (request.size() < wanted) {
    const ssize_t count = recv(connection, buffer, sizeof(buffer), 0);
    if (count <= 0) return false;
    request.append(buffer, static_cast<std::size_t>(count));
    const std::size_t end = request.find("\r\n\r\n");
    if (end == std::string::npos) continue;
    const std::size_t length = request.find(kLength);
    wanted = end + 4;
    if (length < end) wanted += std::stoul(request.substr(length + sizeof(kLength) - 1));
  }
  return true;
}

void SendAll(int connection, const std::string& bytes) {
  for (std::size_t sent = 0; sent < bytes.size();) {
    const ssize_t count = send(connection, bytes.data() + sent, bytes.size() - sent, 0);
    if (count <= 0) return;
    sent += static_cast<std::size_t>(count);
  }
}

}  // namespace

OneReplyServer::OneReplyServer(std::string body)
    : body_(std::move(body)), listener_(Listen()), thread_([this] { Serve(); }) {}

OneReplyServer::~OneReplyServer() {
  Nudge(listener_);
  thread_.join();
  close(listener_);
}

std::string OneReplyServer::Url() const {
  return "http://127.0.0.1:" + std::to_string(ntohs(AddressOf(listener_).sin_port)) + "/";
}

void OneReplyServer::Serve() const {
  const int connection = accept(listener_, nullptr, nullptr);
  if (connection < 0) return;
  if (ReadRequest(connection)) {
    SendAll(connection,
            "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\n"
            "Content-Length: " +
                std::to_string(body_.size()) + "\r\n\r\n" + body_);
  }
  close(connection);
}

}  // namespace stowra_bench

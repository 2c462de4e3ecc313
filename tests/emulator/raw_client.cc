// SPDX-License-Identifier: MIT
#include "tests/emulator/raw_client.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>

namespace stowra_emulator {

RawClient::RawClient(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
  const timeval timeout = {30, 0};
  ::setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof(timeout));
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  EXPECT_EQ(::connect(socket_.get(), reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
}

void RawClient::Send(std::string_view bytes) { ASSERT_TRUE(TrySend(bytes)); }

bool RawClient::TrySend(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

std::string RawClient::ReadUntil(std::string_view mark) {
  std::size_t found = received_.find(mark);
  while (found == std::string::npos && Receive()) found = received_.find(mark);
  return Take(found == std::string::npos ? received_.size() : found + mark.size());
}

std::string RawClient::Read(std::size_t size) {
  while (received_.size() < size && Receive()) {
  }
  return Take(size);
}

std::string RawClient::ReadToEnd() {
  while (Receive()) {
  }
  return Take(received_.size());
}

RawResponse RawClient::Ask(std::string_view request) {
  Send(request);
  return ReadResponse(*this);
}

RawResponse RawClient::Get(const std::string& target) { return Ask(GetRequest(target)); }

bool RawClient::Receive() {
  char bytes[4096];
  const ssize_t count = ::recv(socket_.get(), bytes, sizeof(bytes), 0);
  if (count > 0) {
    received_.append(bytes, static_cast<std::size_t>(count));
    return true;
  }
  if (count < 0) {
    was_reset_ = errno == ECONNRESET;
    EXPECT_TRUE(was_reset_) << "no byte for 30 seconds";
  }
  return false;
}

std::string RawClient::Take(std::size_t size) {
  std::string taken = received_.substr(0, size);
  received_.erase(0, size);
  return taken;
}

std::string RawResponse::Header(const std::string& name) const {
  const std::string start = "\r\n" + name + ": ";
  const std::size_t found = head.find(start);
  if (found == std::string::npos) return std::string();
  const std::size_t value = found + start.size();
  return head.substr(value, head.find("\r\n", value) - value);
}

int RawResponse::status() const {
  return head.rfind("HTTP/1.1 ", 0) == 0 ? std::stoi(head.substr(9, 3)) : -1;
}

RawResponse SplitResponse(const std::string& bytes) {
  const std::size_t head_end = bytes.find("\r\n\r\n");
  EXPECT_NE(head_end, std::string::npos) << "no head in: " << bytes;
  if (head_end == std::string::npos) return {bytes, std::string()};
  return {bytes.substr(0, head_end + 4), bytes.substr(head_end + 4)};
}

RawResponse RawGet(std::uint16_t port, const std::string& target) {
  RawClient client(port);
  client.Send("GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) +
              "\r\nConnection: close\r\n\r\n");
  return SplitResponse(client.ReadToEnd());
}

RawResponse GetFrom(const std::string& url, const std::string& target, int status,
                    const std::string& fields) {
  SCOPED_TRACE(target);
  const std::string host = url.substr(url.rfind('/') + 1);
  RawResponse response =
      RawClient(PortOf(url))
          .Ask("GET " + target + " HTTP/1.1\r\nHost: " + host + "\r\n" + fields + "\r\n");
  EXPECT_EQ(response.status(), status) << response.body.substr(0, 500);
  return response;
}

std::string GetRequest(const std::string& target) {
  return "GET " + target + " HTTP/1.1\r\nHost: localhost\r\n\r\n";
}

RawResponse ReadResponse(RawClient& client) {
  RawResponse response = {client.ReadUntil("\r\n\r\n"), std::string()};
  const std::string length = response.Header("Content-Length");
  EXPECT_NE(length, "") << response.head;
  if (length.empty()) return response;
  response.body = client.Read(std::stoul(length));
  EXPECT_EQ(std::to_string(response.body.size()), length);
  return response;
}

std::uint16_t PortOf(const std::string& url) {
  return static_cast<std::uint16_t>(std::stoi(url.substr(url.rfind(':') + 1)));
}

std::uint16_t RawTest::port() {
  if (emulator_ == nullptr) {
    if (options_.log == nullptr) options_.log = &log_;
    emulator_ = std::make_unique<Emulator>(options_);
  }
  return emulator_->port();
}

RawResponse RawTest::AnswerTo(std::string_view bytes) {
  RawClient client(port());
  client.Send(bytes);
  const std::string answer = client.ReadToEnd();
  EXPECT_FALSE(client.was_reset());
  return SplitResponse(answer);
}

std::string RawTest::EndAndReadLog() {
  emulator_.reset();
  return log_.str();
}

}  // namespace stowra_emulator

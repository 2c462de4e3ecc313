// SPDX-License-Identifier: MIT
// The stream between the HTTP engine and a client.

#ifndef EMULATOR_ENGINE_STREAM_H_
#define EMULATOR_ENGINE_STREAM_H_

#include <httplib.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include "emulator/client_socket.h"
#include "emulator/delivery.h"
#include "emulator/limits.h"

namespace stowra_emulator {

// Reads the head of a request before the engine does, because the engine sets no limit to it. For
// one thread. The socket and the delivery must outlive this object.
class EngineStream : public httplib::Stream {
 public:
  enum class HeadResult { kRead, kClosed, kLongRequestLine, kTooLarge };

  EngineStream(ClientSocket& socket, Delivery& delivery) : socket_(socket), delivery_(delivery) {}

  // True if bytes or the end of the stream can be read.
  bool WaitForInput(std::chrono::milliseconds timeout) const;

  // Reads up to and including the empty line. Without it, `head` holds what came.
  HeadResult ReadHead(const Limits& limits, std::string& head);

  // The engine reads `head`, then up to `size` bytes from the socket. Reads beyond them fail.
  void SetHead(std::string head);
  void LimitBody(std::uint64_t size);

  // Drops what the engine writes, because another response takes its place.
  void DropOutput(bool drops) { drops_output_ = drops; }

  // True if a read has failed because of that limit.
  bool BodyIsTooLarge() const { return body_is_too_large_; }

  // The first bytes of the body, as sent.
  const std::string& body_start() const { return body_start_; }

  bool is_readable() const override { return true; }
  bool is_writable() const override { return delivery_.may_continue(); }

  ssize_t read(char* data, std::size_t size) override;

  // Goes to the delivery once it has begun. Before that it is an interim response.
  ssize_t write(const char* data, std::size_t size) override;

  void get_remote_ip_and_port(std::string&, int&) const override {}
  void get_local_ip_and_port(std::string& address, int& port) const override;

  // No descriptor. The engine would refuse those too large for select, which is not used here.
  socket_t socket() const override { return INVALID_SOCKET; }

 private:
  bool Fill();
  ssize_t ReadBody(char* data, std::size_t size);

  ClientSocket& socket_;
  Delivery& delivery_;
  std::array<char, 65536> input_;
  std::size_t input_position_ = 0;
  std::size_t input_end_ = 0;
  std::string head_;
  std::size_t head_position_ = 0;
  std::uint64_t allowed_body_ = 0;
  bool body_is_too_large_ = false;
  std::string body_start_;
  bool drops_output_ = false;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_ENGINE_STREAM_H_

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

namespace stowra_emulator {

// Collects a whole response before it is sent, because a fault can affect all of it. For one
// thread. The socket must outlive this object.
class EngineStream : public httplib::Stream {
 public:
  explicit EngineStream(ClientSocket& socket) : socket_(socket) {}

  // True if bytes or the end of the stream can be read.
  bool WaitForInput(std::chrono::milliseconds timeout) const;

  // Allows `size` more bytes to be read. Reads beyond them fail.
  void AllowInput(std::uint64_t size);

  // True if a read has failed because of that limit.
  bool WantsMoreInput() const { return wants_more_input_; }

  // Hands out what was written since the last call.
  std::string TakeResponse();

  bool is_readable() const override { return true; }
  bool is_writable() const override { return true; }

  // First sends what has been written: the client sends no body before it gets "100 Continue".
  ssize_t read(char* data, std::size_t size) override;
  ssize_t write(const char* data, std::size_t size) override;

  void get_remote_ip_and_port(std::string&, int&) const override {}
  void get_local_ip_and_port(std::string& address, int& port) const override;

  // No descriptor. The engine would refuse those too large for select, which is not used here.
  socket_t socket() const override { return INVALID_SOCKET; }

 private:
  ClientSocket& socket_;
  std::array<char, 8192> input_;
  std::size_t input_position_ = 0;
  std::size_t input_end_ = 0;
  std::uint64_t allowed_input_ = 0;
  bool wants_more_input_ = false;
  std::string response_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_ENGINE_STREAM_H_

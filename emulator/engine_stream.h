// What the HTTP engine reads requests from and writes responses to.

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

// Keeps a response until it is complete, since a fault concerns how all of it is sent.
// For one thread; the socket must outlive it.
class EngineStream : public httplib::Stream {
 public:
  explicit EngineStream(ClientSocket& socket) : socket_(socket) {}

  // True when there is something to read, be it the end of the stream.
  bool WaitForInput(std::chrono::milliseconds timeout) const;

  // Lets that many bytes more be read; further reads fail.
  void AllowInput(std::uint64_t size);

  // Whether a read has failed for that.
  bool WantsMoreInput() const { return wants_more_input_; }

  // The response written since the last call.
  std::string TakeResponse();

  bool is_readable() const override { return true; }
  bool is_writable() const override { return true; }

  // Sends what has been written before it reads: an interim "100 Continue" must not wait for the
  // body that waits for it.
  ssize_t read(char* data, std::size_t size) override;
  ssize_t write(const char* data, std::size_t size) override;

  void get_remote_ip_and_port(std::string&, int&) const override {}
  void get_local_ip_and_port(std::string& address, int& port) const override;

  // None: the engine would refuse descriptors too large for select, which nobody here calls.
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

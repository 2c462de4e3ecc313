#include "emulator/engine_stream.h"

#include <algorithm>
#include <utility>

namespace stowra_emulator {

bool EngineStream::WaitForInput(std::chrono::milliseconds timeout) const {
  return input_position_ < input_end_ || socket_.WaitReadable(timeout);
}

void EngineStream::AllowInput(std::uint64_t size) {
  allowed_input_ = size;
  wants_more_input_ = false;
}

std::string EngineStream::TakeResponse() { return std::exchange(response_, std::string()); }

ssize_t EngineStream::read(char* data, std::size_t size) {
  if (allowed_input_ == 0) {
    wants_more_input_ = true;
    return -1;
  }
  if (!response_.empty()) {
    const std::string interim = TakeResponse();
    if (!socket_.Send(interim.data(), interim.size())) return -1;
  }
  if (input_position_ == input_end_) {
    const ssize_t received = socket_.Receive(input_.data(), input_.size());
    if (received <= 0) return received;
    input_position_ = 0;
    input_end_ = static_cast<std::size_t>(received);
  }
  const auto count = std::min<std::uint64_t>({size, input_end_ - input_position_, allowed_input_});
  std::copy_n(input_.data() + input_position_, count, data);
  input_position_ += count;
  allowed_input_ -= count;
  return static_cast<ssize_t>(count);
}

ssize_t EngineStream::write(const char* data, std::size_t size) {
  response_.append(data, size);
  return static_cast<ssize_t>(size);
}

void EngineStream::get_local_ip_and_port(std::string& address, int& port) const {
  const SocketAddress local = socket_.LocalAddress();
  address = local.host();
  port = local.port();
}

}  // namespace stowra_emulator

// SPDX-License-Identifier: MIT
#include "emulator/engine_stream.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "emulator/capture.h"

namespace stowra_emulator {

bool EngineStream::WaitForInput(std::chrono::milliseconds timeout) const {
  return input_position_ < input_end_ || socket_.WaitReadable(timeout);
}

EngineStream::HeadResult EngineStream::ReadHead(const Limits& limits, std::string& head) {
  constexpr std::string_view kEnd = "\n\r\n";
  head.clear();
  std::size_t line_start = 0;
  while (true) {
    if (input_position_ == input_end_ && !Fill()) return HeadResult::kClosed;
    const char* from = input_.data() + input_position_;
    const char* to = std::find(from, std::as_const(input_).data() + input_end_, '\n');
    const bool ends_line = to != input_.data() + input_end_;
    const auto count = static_cast<std::size_t>(to - from) + (ends_line ? 1 : 0);
    const bool is_request_line = line_start == 0;
    const std::size_t taken = std::min(count, limits.head - std::min(limits.head, head.size()));
    head.append(from, taken);
    input_position_ += taken;
    if (head.size() - line_start > limits.head_line) {
      return is_request_line ? HeadResult::kLongRequestLine : HeadResult::kTooLarge;
    }
    if (taken < count) return HeadResult::kTooLarge;
    if (!ends_line) continue;
    if (head.size() >= kEnd.size() &&
        head.compare(head.size() - kEnd.size(), kEnd.size(), kEnd) == 0) {
      return HeadResult::kRead;
    }
    line_start = head.size();
  }
}

void EngineStream::SetHead(std::string head) {
  head_ = std::move(head);
  head_position_ = 0;
  allowed_body_ = 0;
  body_is_too_large_ = false;
  body_start_.clear();
}

void EngineStream::LimitBody(std::uint64_t size) { allowed_body_ = size; }

ssize_t EngineStream::read(char* data, std::size_t size) {
  if (head_position_ == head_.size()) return ReadBody(data, size);
  const std::size_t count = std::min(size, head_.size() - head_position_);
  std::copy_n(head_.data() + head_position_, count, data);
  head_position_ += count;
  return static_cast<ssize_t>(count);
}

ssize_t EngineStream::ReadBody(char* data, std::size_t size) {
  if (allowed_body_ == 0) {
    body_is_too_large_ = true;
    return -1;
  }
  if (input_position_ == input_end_ && !Fill()) return -1;
  const auto count = std::min<std::uint64_t>({size, input_end_ - input_position_, allowed_body_});
  std::copy_n(input_.data() + input_position_, count, data);
  Capture({data, count}, body_start_);
  input_position_ += count;
  allowed_body_ -= count;
  return static_cast<ssize_t>(count);
}

bool EngineStream::Fill() {
  const ssize_t received = socket_.Receive(input_.data(), input_.size());
  if (received <= 0) return false;
  input_position_ = 0;
  input_end_ = static_cast<std::size_t>(received);
  return true;
}

ssize_t EngineStream::write(const char* data, std::size_t size) {
  if (drops_output_) return static_cast<ssize_t>(size);
  const bool was_sent =
      delivery_.has_begun() ? delivery_.Write({data, size}) : socket_.Send(data, size);
  return was_sent ? static_cast<ssize_t>(size) : -1;
}

void EngineStream::get_local_ip_and_port(std::string& address, int& port) const {
  const SocketAddress local = socket_.LocalAddress();
  address = local.host();
  port = local.port();
}

}  // namespace stowra_emulator

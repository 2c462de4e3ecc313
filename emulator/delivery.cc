// SPDX-License-Identifier: MIT
#include "emulator/delivery.h"

#include <algorithm>
#include <cstddef>

namespace stowra_emulator {

using Kind = Fault::Kind;

void Delivery::Reset() {
  fault_ = Fault();
  has_begun_ = false;
  head_was_sent_ = false;
  may_continue_ = true;
  body_size_ = 0;
  body_bytes_ = 0;
  head_.clear();
}

void Delivery::Begin(const Fault& fault, std::uint64_t body_size) {
  Reset();
  fault_ = fault;
  body_size_ = body_size;
  has_begun_ = true;
}

bool Delivery::Write(std::string_view bytes) {
  if (!may_continue_) return false;
  if (head_was_sent_) return SendBody(bytes);
  constexpr std::string_view kHeadEnd = "\r\n\r\n";
  const std::size_t written = head_.size();
  head_ += bytes;
  const std::size_t found = head_.find(kHeadEnd);
  if (found == std::string::npos) return true;
  head_.resize(found + kHeadEnd.size());
  return SendHead() && SendBody(bytes.substr(head_.size() - written));
}

bool Delivery::SendHead() {
  if (fault_.kind == Kind::kStall && !socket_.Pause(fault_.pause)) {
    may_continue_ = false;
    return false;
  }
  head_was_sent_ = true;
  if (!Send(head_)) return false;
  // After an interim status the client still waits for the final response.
  if (fault_.kind == Kind::kStatus && fault_.status < 200) may_continue_ = false;
  return IsCut() && body_size_ / 2 == 0 ? Cut() : true;
}

bool Delivery::SendBody(std::string_view bytes) {
  if (bytes.empty()) return true;
  if (fault_.kind == Kind::kDrip) return Drip(bytes);
  const std::uint64_t half = body_size_ / 2;
  const bool reaches_cut = IsCut() && body_bytes_ + bytes.size() >= half;
  if (reaches_cut) bytes = bytes.substr(0, static_cast<std::size_t>(half - body_bytes_));
  if (!Send(bytes)) return false;
  body_bytes_ += bytes.size();
  return reaches_cut ? Cut() : true;
}

bool Delivery::Drip(std::string_view bytes) {
  for (const char& byte : bytes) {
    if (body_bytes_ > 0 && !socket_.Pause(fault_.pause)) {
      may_continue_ = false;
      return false;
    }
    if (!Send({&byte, 1})) return false;
    ++body_bytes_;
  }
  return true;
}

bool Delivery::Send(std::string_view bytes) {
  const bool was_sent = socket_.Send(bytes.data(), bytes.size());
  if (!was_sent) may_continue_ = false;
  return was_sent;
}

bool Delivery::IsCut() const {
  return fault_.kind == Kind::kTruncate || fault_.kind == Kind::kReset;
}

bool Delivery::Cut() {
  if (fault_.kind == Kind::kReset) socket_.Reset();
  may_continue_ = false;
  return false;
}

}  // namespace stowra_emulator

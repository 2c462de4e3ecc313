// SPDX-License-Identifier: MIT
#include "emulator/request_log.h"

#include <algorithm>

namespace stowra_emulator {
namespace {

// A malformed request may lack a part or contain control characters for a terminal.
std::string Printable(std::string text) {
  if (text.empty()) return "-";
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
  return text;
}

}  // namespace

void RequestLog::Write(const LogEntry& entry) {
  if (out_ == nullptr) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  *out_ << Printable(entry.method) << ' ' << Printable(entry.target) << ' ' << entry.status << ' '
        << entry.body_bytes << std::endl;
}

}  // namespace stowra_emulator

// SPDX-License-Identifier: MIT
// Turns the fuzzer's bytes into choices.

#ifndef FUZZ_SUPPORT_INPUT_H_
#define FUZZ_SUPPORT_INPUT_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace stowra_fuzz {

// Takes values from the front of the bytes. Numbers are 0 once no byte is left. Does not own the
// bytes.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size)
      : rest_(reinterpret_cast<const char*>(data), size) {}

  bool empty() const { return rest_.empty(); }

  std::uint8_t Byte() {
    if (rest_.empty()) return 0;
    const auto byte = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return byte;
  }

  // Two bytes, most significant first.
  std::uint16_t Word() {
    const unsigned int high = Byte();
    return static_cast<std::uint16_t>(high << 8 | Byte());
  }

  // From 0 to `end` - 1. REQUIRES: 0 < end <= 256.
  std::size_t Below(std::size_t end) { return Byte() % end; }

  // The next `wanted` bytes, or fewer at the end.
  std::string_view Bytes(std::size_t wanted) {
    const std::string_view bytes = rest_.substr(0, wanted);
    rest_.remove_prefix(bytes.size());
    return bytes;
  }

  // The bytes before the next `separator`, which is taken too. Without one, all bytes that are
  // left.
  std::string_view Until(char separator) {
    const std::size_t end = std::min(rest_.find(separator), rest_.size());
    const std::string_view bytes = rest_.substr(0, end);
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return bytes;
  }

  std::string_view Rest() { return Bytes(rest_.size()); }

 private:
  std::string_view rest_;
};

}  // namespace stowra_fuzz

#endif  // FUZZ_SUPPORT_INPUT_H_

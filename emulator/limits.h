// SPDX-License-Identifier: MIT
// How much a request may hold.

#ifndef EMULATOR_LIMITS_H_
#define EMULATOR_LIMITS_H_

#include <cstddef>
#include <cstdint>

namespace stowra_emulator {

// All in bytes.
struct Limits {
  std::size_t head_line = 8 << 10;  // As many as the HTTP library takes.
  std::size_t head = 64 << 10;
  std::uint64_t body = 64 << 20;                  // As sent, and once it is inflated.
  std::uint64_t upload = std::uint64_t{8} << 30;  // Of a form with files, as sent.
  std::uint64_t form_texts = 1 << 20;             // Of all parts of a form that are no files.
};

}  // namespace stowra_emulator

#endif  // EMULATOR_LIMITS_H_

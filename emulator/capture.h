// SPDX-License-Identifier: MIT
// Keeping the start of what passes by.

#ifndef EMULATOR_CAPTURE_H_
#define EMULATOR_CAPTURE_H_

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace stowra_emulator {

// The most that is kept of a head or a body, to be shown (bytes).
constexpr std::size_t kCaptureSize = 8 << 10;

// Appends to `captured` what still fits.
inline void Capture(std::string_view bytes, std::string& captured) {
  captured += bytes.substr(0, kCaptureSize - std::min(kCaptureSize, captured.size()));
}

}  // namespace stowra_emulator

#endif  // EMULATOR_CAPTURE_H_

// SPDX-License-Identifier: MIT
// The ranges that a client asks for.

#ifndef EMULATOR_RANGE_H_
#define EMULATOR_RANGE_H_

#include <cstdint>
#include <string_view>

namespace stowra_emulator {

struct ByteRange {
  enum class Kind { kWhole, kPart, kUnsatisfiable };

  Kind kind = Kind::kWhole;
  std::uint64_t offset = 0;  // These two of kPart. The length is not 0.
  std::uint64_t length = 0;
};

// Reads the value of a field "Range" for a file of `size` bytes. The whole file is the answer to
// several ranges, to other units and to what is malformed.
ByteRange ParseRange(std::string_view value, std::uint64_t size);

}  // namespace stowra_emulator

#endif  // EMULATOR_RANGE_H_

// SPDX-License-Identifier: MIT
#include "emulator/utf8.h"

namespace stowra_emulator {
namespace {

constexpr DecodedCharacter kInvalid = {false, 1, 0};

}  // namespace

DecodedCharacter DecodeUtf8(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x80) return {true, 1, first};
  if (first < 0xC2 || first > 0xF4) return kInvalid;
  const std::size_t size = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  if (text.size() < size) return kInvalid;
  char32_t code_point = first & (0x7FU >> size);
  for (std::size_t i = 1; i < size; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0) != 0x80) return kInvalid;
    code_point = (code_point << 6) | (next & 0x3F);
  }
  const bool is_overlong = (size == 3 && code_point < 0x800) || (size == 4 && code_point < 0x10000);
  const bool is_surrogate = code_point >= 0xD800 && code_point <= 0xDFFF;
  if (is_overlong || is_surrogate || code_point > 0x10FFFF) return kInvalid;
  return {true, size, code_point};
}

}  // namespace stowra_emulator

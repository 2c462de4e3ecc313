// SPDX-License-Identifier: MIT
// Reading UTF-8.

#ifndef EMULATOR_UTF8_H_
#define EMULATOR_UTF8_H_

#include <cstddef>
#include <string_view>

namespace stowra_emulator {

struct DecodedCharacter {
  bool is_valid;
  std::size_t size;     // In bytes; 1 if it is not valid.
  char32_t code_point;  // 0 if it is not valid.
};

// Decodes the first character of `text`, which must not be empty. Overlong forms, surrogates and
// values above U+10FFFF are not valid.
DecodedCharacter DecodeUtf8(std::string_view text);

}  // namespace stowra_emulator

#endif  // EMULATOR_UTF8_H_

// Reading UTF-8.

#ifndef EMULATOR_UTF8_H_
#define EMULATOR_UTF8_H_

#include <cstddef>
#include <string_view>

namespace stowra_emulator {

struct DecodedCharacter {
  bool is_valid;
  std::size_t size;     // Bytes that it takes up; 1 when it is not valid.
  char32_t code_point;  // 0 when it is not valid.
};

// The first character of `text`, which is not empty. Overlong forms, surrogates and what lies
// beyond U+10FFFF are not valid.
DecodedCharacter DecodeUtf8(std::string_view text);

}  // namespace stowra_emulator

#endif  // EMULATOR_UTF8_H_

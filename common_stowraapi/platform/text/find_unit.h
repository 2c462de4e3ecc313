// Searches UTF-16 for one character.

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_FIND_UNIT_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_FIND_UNIT_H_

#include <cstddef>
#include <cstring>
#include <string_view>

namespace ovrant::utils {

// Index of the first occurrence of an ASCII character, or text.size(). std::memchr tests many bytes
// in one step. Few of those that it finds belong to another unit.
inline std::size_t FindUnit(std::u16string_view text, char character) {
  const char* const bytes = reinterpret_cast<const char*>(text.data());
  const std::size_t size = text.size() * sizeof(char16_t);
  for (std::size_t at = 0; at < size; ++at) {
    const void* const found = std::memchr(bytes + at, character, size - at);
    if (found == nullptr) break;
    at = static_cast<std::size_t>(static_cast<const char*>(found) - bytes);
    const std::size_t index = at / sizeof(char16_t);
    if (text[index] == static_cast<char16_t>(character)) return index;
  }
  return text.size();
}

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_FIND_UNIT_H_

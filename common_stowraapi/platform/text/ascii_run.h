// Finds ASCII and converts it between UTF-8 and UTF-16.

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_ASCII_RUN_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_ASCII_RUN_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "common_stowraapi/platform/text/ascii_block.h"

namespace ovrant::utils {

// What is shorter than a block goes by four units in one word, whatever the order of its bytes.
constexpr std::size_t kAsciiQuad = 4;

inline std::uint32_t LoadQuad(const char* from) {
  std::uint32_t bytes;
  std::memcpy(&bytes, from, sizeof(bytes));
  return bytes;
}

inline std::uint64_t LoadQuad(const char16_t* from) {
  std::uint64_t units;
  std::memcpy(&units, from, sizeof(units));
  return units;
}

inline bool IsAsciiQuad(std::uint32_t bytes) { return (bytes & 0x80808080) == 0; }
inline bool IsAsciiQuad(std::uint64_t units) { return (units & 0xFF80FF80FF80FF80) == 0; }

inline void WidenQuad(std::uint32_t bytes, char16_t* to) {
  std::uint64_t units = (bytes | std::uint64_t{bytes} << 16) & 0x0000FFFF0000FFFF;
  units = (units | units << 8) & 0x00FF00FF00FF00FF;
  std::memcpy(to, &units, sizeof(units));
}

inline void NarrowQuad(std::uint64_t units, char* to) {
  units = (units | units >> 8) & 0x0000FFFF0000FFFF;
  const auto bytes = static_cast<std::uint32_t>(units | units >> 16);
  std::memcpy(to, &bytes, sizeof(bytes));
}

inline bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }
inline bool IsAscii(char16_t unit) { return unit < 0x80; }

// Whether all of `text` is. The last block or quad overlaps the one before it.
template <typename Unit>
bool IsAscii(std::basic_string_view<Unit> text) {
  const Unit* const units = text.data();
  if (text.size() >= kAsciiBlock) {
    const std::size_t last = text.size() - kAsciiBlock;
    for (std::size_t at = 0; at < last; at += kAsciiBlock) {
      if (BeyondAscii(units + at) != 0) return false;
    }
    return BeyondAscii(units + last) == 0;
  }
  if (text.size() >= kAsciiQuad) {
    const std::size_t last = text.size() - kAsciiQuad;
    for (std::size_t at = 0; at < last; at += kAsciiQuad) {
      if (!IsAsciiQuad(LoadQuad(units + at))) return false;
    }
    return IsAsciiQuad(LoadQuad(units + last));
  }
  return std::all_of(text.begin(), text.end(), [](Unit unit) { return IsAscii(unit); });
}

// WidenAscii and NarrowAscii convert the run of ASCII at the start of `from` (`length` units) and
// return its length. `to` has room for `length` units; what stands behind the run means nothing.

inline std::size_t WidenAscii(const char* from, std::size_t length, char16_t* to) {
  std::size_t done = 0;
  while (length - done >= kAsciiStretch && WidenStretch(from + done, to + done)) {
    done += kAsciiStretch;
  }
  for (; length - done >= kAsciiBlock; done += kAsciiBlock) {
    const BlockMask mask = WidenBlock(from + done, to + done);
    if (mask != 0) return done + FirstSet(mask);
  }
  for (; length - done >= kAsciiQuad; done += kAsciiQuad) {
    const std::uint32_t bytes = LoadQuad(from + done);
    if (!IsAsciiQuad(bytes)) break;
    WidenQuad(bytes, to + done);
  }
  for (; done < length && IsAscii(from[done]); ++done) {
    to[done] = static_cast<unsigned char>(from[done]);
  }
  return done;
}

inline std::size_t NarrowAscii(const char16_t* from, std::size_t length, char* to) {
  std::size_t done = 0;
  while (length - done >= kAsciiStretch && NarrowStretch(from + done, to + done)) {
    done += kAsciiStretch;
  }
  for (; length - done >= kAsciiBlock; done += kAsciiBlock) {
    const BlockMask mask = NarrowBlock(from + done, to + done);
    if (mask != 0) return done + FirstSet(mask);
  }
  for (; length - done >= kAsciiQuad; done += kAsciiQuad) {
    const std::uint64_t units = LoadQuad(from + done);
    if (!IsAsciiQuad(units)) break;
    NarrowQuad(units, to + done);
  }
  for (; done < length && IsAscii(from[done]); ++done) to[done] = static_cast<char>(from[done]);
  return done;
}

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_ASCII_RUN_H_

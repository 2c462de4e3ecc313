// SPDX-License-Identifier: MIT
// Finds ASCII at the start of a text and converts it between UTF-8 and UTF-16.

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_ASCII_RUN_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_ASCII_RUN_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ovrant::utils {

inline bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }
inline bool IsAscii(char16_t unit) { return unit < 0x80; }

// Units that ConvertAscii tests together. g++ keeps only vectors of 16 bytes in registers.
constexpr std::size_t kAsciiStretch = 32;
constexpr std::size_t kAsciiBlock = 8;

constexpr bool kLittleEndian = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;

using ByteVector = std::uint8_t __attribute__((vector_size(16)));

inline void ConvertSixteen(const char* from, char16_t* to) {
  ByteVector bytes;
  std::memcpy(&bytes, from, sizeof(bytes));
  const ByteVector zero = {};
  const ByteVector low = kLittleEndian ? bytes : zero;
  const ByteVector high = kLittleEndian ? zero : bytes;
  const ByteVector front =
      __builtin_shufflevector(low, high, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
  const ByteVector back = __builtin_shufflevector(low, high, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28,
                                                  13, 29, 14, 30, 15, 31);
  std::memcpy(to, &front, sizeof(front));
  std::memcpy(to + 8, &back, sizeof(back));
}

inline void ConvertSixteen(const char16_t* from, char* to) {
  ByteVector front;
  ByteVector back;
  std::memcpy(&front, from, sizeof(front));
  std::memcpy(&back, from + 8, sizeof(back));
  constexpr int kLow = kLittleEndian ? 0 : 1;
  const ByteVector bytes = __builtin_shufflevector(
      front, back, kLow, kLow + 2, kLow + 4, kLow + 6, kLow + 8, kLow + 10, kLow + 12, kLow + 14,
      kLow + 16, kLow + 18, kLow + 20, kLow + 22, kLow + 24, kLow + 26, kLow + 28, kLow + 30);
  std::memcpy(to, &bytes, sizeof(bytes));
}

template <typename Unit>
bool IsAsciiStretch(const Unit* units) {
  using Words = std::uint64_t __attribute__((vector_size(16)));
  constexpr std::uint64_t kBeyondAscii =
      sizeof(Unit) == 1 ? 0x8080808080808080 : 0xFF80FF80FF80FF80;
  Words all = {0, 0};
  for (std::size_t i = 0; i < kAsciiStretch; i += sizeof(Words) / sizeof(Unit)) {
    Words words;
    std::memcpy(&words, units + i, sizeof(words));
    all |= words;
  }
  return ((all[0] | all[1]) & kBeyondAscii) == 0;
}

template <typename Unit>
struct Block;
template <>
struct Block<char> {
  using Vector = std::uint8_t __attribute__((vector_size(kAsciiBlock)));
};
template <>
struct Block<char16_t> {
  using Vector = std::uint16_t __attribute__((vector_size(2 * kAsciiBlock)));
};

// Converts kAsciiBlock units. Returns how many of them come before the first that is not ASCII.
template <typename From, typename To>
std::size_t ConvertBlock(const From* from, To* to) {
  using ToVector = typename Block<To>::Vector;
  using Marks = Block<char>::Vector;
  typename Block<From>::Vector units;
  std::memcpy(&units, from, sizeof(units));
  const ToVector converted = __builtin_convertvector(units, ToVector);
  std::memcpy(to, &converted, sizeof(converted));
  const Marks marks = __builtin_convertvector(units > 0x7F, Marks);
  std::uint64_t word;
  std::memcpy(&word, &marks, sizeof(word));
  if (word == 0) return kAsciiBlock;
  return static_cast<std::size_t>(kLittleEndian ? __builtin_ctzll(word) : __builtin_clzll(word)) /
         8;
}

// Converts the ASCII at the start of `from` (`length` units) and returns its length. `to` has room
// for `length` units. What stands behind the ASCII there means nothing.
template <typename From, typename To>
std::size_t ConvertAscii(const From* from, std::size_t length, To* to) {
  std::size_t done = 0;
  while (length - done >= kAsciiStretch && IsAsciiStretch(from + done)) {
    ConvertSixteen(from + done, to + done);
    ConvertSixteen(from + done + 16, to + done + 16);
    done += kAsciiStretch;
  }
  while (length - done >= kAsciiBlock) {
    const std::size_t run = ConvertBlock(from + done, to + done);
    done += run;
    if (run < kAsciiBlock) return done;
  }
  for (; done < length && IsAscii(from[done]); ++done) to[done] = static_cast<To>(from[done]);
  return done;
}

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_ASCII_RUN_H_

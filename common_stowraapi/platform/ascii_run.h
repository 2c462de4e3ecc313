// Runs of ASCII at the start of a text, converted sixteen units at a step.

#ifndef COMMON_STOWRAAPI_PLATFORM_ASCII_RUN_H_
#define COMMON_STOWRAAPI_PLATFORM_ASCII_RUN_H_

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__aarch64__) && !defined(__AARCH64EB__)
#include <arm_neon.h>
#define STOWRA_ASCII_RUN_NEON
#endif

namespace ovrant::utils {

// Units in one step.
constexpr std::size_t kAsciiBlock = 16;

// WidenBlock and NarrowBlock convert one block of kAsciiBlock units and return a mask, 0 if all of
// them are ASCII; FirstSet finds in another mask the index of the first unit that is not. All of
// `to` is written; what stands behind the ASCII means nothing.

#if defined(__SSE2__)

using BlockMask = unsigned;

inline std::size_t FirstSet(BlockMask mask) {
  return static_cast<std::size_t>(__builtin_ctz(mask));
}

inline BlockMask WidenBlock(const char* from, char16_t* to) {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  const __m128i zero = _mm_setzero_si128();
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_unpacklo_epi8(bytes, zero));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 8), _mm_unpackhi_epi8(bytes, zero));
  return static_cast<BlockMask>(_mm_movemask_epi8(bytes));
}

inline BlockMask NarrowBlock(const char16_t* from, char* to) {
  const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 8));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(low, high));
  const __m128i beyond = _mm_set1_epi16(static_cast<short>(0xFF80));
  const __m128i zero = _mm_setzero_si128();
  const __m128i ascii = _mm_packs_epi16(_mm_cmpeq_epi16(_mm_and_si128(low, beyond), zero),
                                        _mm_cmpeq_epi16(_mm_and_si128(high, beyond), zero));
  return static_cast<BlockMask>(_mm_movemask_epi8(ascii) ^ 0xFFFF);
}

#elif defined(STOWRA_ASCII_RUN_NEON)

using BlockMask = std::uint64_t;

inline std::size_t FirstSet(BlockMask mask) {
  return static_cast<std::size_t>(__builtin_ctzll(mask)) / 4;
}

// Four bits for each byte, set where it is not ASCII.
inline BlockMask BeyondAscii(uint8x16_t bytes) {
  const uint16x8_t beyond = vreinterpretq_u16_u8(vcgeq_u8(bytes, vdupq_n_u8(0x80)));
  return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(beyond, 4)), 0);
}

inline BlockMask WidenBlock(const char* from, char16_t* to) {
  const uint8x16_t bytes = vld1q_u8(reinterpret_cast<const std::uint8_t*>(from));
  auto* out = reinterpret_cast<std::uint8_t*>(to);
  vst1q_u8(out, vreinterpretq_u8_u16(vmovl_u8(vget_low_u8(bytes))));
  vst1q_u8(out + 16, vreinterpretq_u8_u16(vmovl_high_u8(bytes)));
  return BeyondAscii(bytes);
}

inline BlockMask NarrowBlock(const char16_t* from, char* to) {
  const auto* in = reinterpret_cast<const std::uint8_t*>(from);
  const uint16x8_t low = vreinterpretq_u16_u8(vld1q_u8(in));
  const uint16x8_t high = vreinterpretq_u16_u8(vld1q_u8(in + 16));
  const uint8x16_t narrow = vqmovn_high_u16(vqmovn_u16(low), high);
  vst1q_u8(reinterpret_cast<std::uint8_t*>(to), narrow);
  return BeyondAscii(narrow);
}

#else

// A bit for each unit.
using BlockMask = unsigned;

inline std::size_t FirstSet(BlockMask mask) {
  return static_cast<std::size_t>(__builtin_ctz(mask));
}

inline BlockMask WidenBlock(const char* from, char16_t* to) {
  BlockMask mask = 0;
  for (unsigned i = 0; i < kAsciiBlock; ++i) {
    const auto byte = static_cast<unsigned char>(from[i]);
    to[i] = byte;
    mask |= BlockMask{byte >= 0x80} << i;
  }
  return mask;
}

inline BlockMask NarrowBlock(const char16_t* from, char* to) {
  BlockMask mask = 0;
  for (unsigned i = 0; i < kAsciiBlock; ++i) {
    to[i] = static_cast<char>(from[i]);
    mask |= BlockMask{from[i] >= 0x80} << i;
  }
  return mask;
}

#endif

// WidenAscii and NarrowAscii convert the run of ASCII at the start of `from` (`length` units) and
// return its length. `to` has room for `length` units; what stands behind the run means nothing.

inline std::size_t WidenAscii(const char* from, std::size_t length, char16_t* to) {
  std::size_t done = 0;
  while (length - done >= kAsciiBlock) {
    const BlockMask mask = WidenBlock(from + done, to + done);
    if (mask != 0) return done + FirstSet(mask);
    done += kAsciiBlock;
  }
  for (; done < length && static_cast<unsigned char>(from[done]) < 0x80; ++done) {
    to[done] = static_cast<unsigned char>(from[done]);
  }
  return done;
}

inline std::size_t NarrowAscii(const char16_t* from, std::size_t length, char* to) {
  std::size_t done = 0;
  while (length - done >= kAsciiBlock) {
    const BlockMask mask = NarrowBlock(from + done, to + done);
    if (mask != 0) return done + FirstSet(mask);
    done += kAsciiBlock;
  }
  for (; done < length && from[done] < 0x80; ++done) to[done] = static_cast<char>(from[done]);
  return done;
}

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_ASCII_RUN_H_

// Blocks of sixteen units: whether they are ASCII, and their conversion.

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_ASCII_BLOCK_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_ASCII_BLOCK_H_

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__aarch64__) && !defined(__AARCH64EB__)
#include <arm_neon.h>
#define STOWRA_ASCII_BLOCK_NEON
#endif

namespace ovrant::utils {

// Units in a block, and in two, which one test covers.
constexpr std::size_t kAsciiBlock = 16;
constexpr std::size_t kAsciiStretch = 2 * kAsciiBlock;

// BeyondAscii gives a mask of one block, 0 if all of it is ASCII; FirstSet finds in another mask
// the index of the first unit that is not. WidenBlock and NarrowBlock convert a block and return
// its mask. All of `to` is written; what stands behind the ASCII means nothing.
//
// WidenStretch and NarrowStretch convert a stretch and return whether all of it is ASCII; if not,
// `to` means nothing.

#if defined(__SSE2__)

using BlockMask = unsigned;

inline std::size_t FirstSet(BlockMask mask) {
  return static_cast<std::size_t>(__builtin_ctz(mask));
}

inline __m128i LoadVector(const void* from) {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

inline void StoreVector(__m128i units, void* to) {
  _mm_storeu_si128(static_cast<__m128i*>(to), units);
}

// Of eight units: the highest bit is set in those that are not ASCII.
inline __m128i MarkBeyondAscii(__m128i units) {
  return _mm_adds_epu16(units, _mm_set1_epi16(0x7F80));
}

inline BlockMask BeyondAscii(const char* from) {
  return static_cast<BlockMask>(_mm_movemask_epi8(LoadVector(from)));
}

inline BlockMask BeyondAscii(const char16_t* from) {
  const __m128i front = MarkBeyondAscii(LoadVector(from));
  const __m128i back = MarkBeyondAscii(LoadVector(from + 8));
  return static_cast<BlockMask>(_mm_movemask_epi8(_mm_packs_epi16(front, back)));
}

inline BlockMask WidenBlock(const char* from, char16_t* to) {
  const __m128i bytes = LoadVector(from);
  const __m128i zero = _mm_setzero_si128();
  StoreVector(_mm_unpacklo_epi8(bytes, zero), to);
  StoreVector(_mm_unpackhi_epi8(bytes, zero), to + 8);
  return static_cast<BlockMask>(_mm_movemask_epi8(bytes));
}

inline BlockMask NarrowBlock(const char16_t* from, char* to) {
  const BlockMask mask = BeyondAscii(from);
  StoreVector(_mm_packus_epi16(LoadVector(from), LoadVector(from + 8)), to);
  return mask;
}

inline bool WidenStretch(const char* from, char16_t* to) {
  const __m128i front = LoadVector(from);
  const __m128i back = LoadVector(from + 16);
  if (_mm_movemask_epi8(_mm_or_si128(front, back)) != 0) return false;
  const __m128i zero = _mm_setzero_si128();
  StoreVector(_mm_unpacklo_epi8(front, zero), to);
  StoreVector(_mm_unpackhi_epi8(front, zero), to + 8);
  StoreVector(_mm_unpacklo_epi8(back, zero), to + 16);
  StoreVector(_mm_unpackhi_epi8(back, zero), to + 24);
  return true;
}

inline bool NarrowStretch(const char16_t* from, char* to) {
  constexpr int kHighBytes = 0xAAAA;
  const __m128i a = LoadVector(from);
  const __m128i b = LoadVector(from + 8);
  const __m128i c = LoadVector(from + 16);
  const __m128i d = LoadVector(from + 24);
  const __m128i all = _mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d));
  if ((_mm_movemask_epi8(MarkBeyondAscii(all)) & kHighBytes) != 0) return false;
  StoreVector(_mm_packus_epi16(a, b), to);
  StoreVector(_mm_packus_epi16(c, d), to + 16);
  return true;
}

#elif defined(STOWRA_ASCII_BLOCK_NEON)

using BlockMask = std::uint64_t;

inline std::size_t FirstSet(BlockMask mask) {
  return static_cast<std::size_t>(__builtin_ctzll(mask)) / 4;
}

inline uint8x16_t LoadBlock(const char* from) {
  return vld1q_u8(reinterpret_cast<const std::uint8_t*>(from));
}

// What does not fit a byte becomes the greatest.
inline uint8x16_t LoadBlock(const char16_t* from) {
  const auto* in = reinterpret_cast<const std::uint8_t*>(from);
  const uint16x8_t front = vreinterpretq_u16_u8(vld1q_u8(in));
  const uint16x8_t back = vreinterpretq_u16_u8(vld1q_u8(in + 16));
  return vqmovn_high_u16(vqmovn_u16(front), back);
}

// Four bits for each byte, set where it is not ASCII.
inline BlockMask BeyondAscii(uint8x16_t bytes) {
  const uint16x8_t beyond = vreinterpretq_u16_u8(vcgeq_u8(bytes, vdupq_n_u8(0x80)));
  return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(beyond, 4)), 0);
}

inline BlockMask BeyondAscii(const char* from) { return BeyondAscii(LoadBlock(from)); }
inline BlockMask BeyondAscii(const char16_t* from) { return BeyondAscii(LoadBlock(from)); }

inline BlockMask WidenBlock(const char* from, char16_t* to) {
  const uint8x16_t bytes = LoadBlock(from);
  auto* out = reinterpret_cast<std::uint8_t*>(to);
  vst1q_u8(out, vreinterpretq_u8_u16(vmovl_u8(vget_low_u8(bytes))));
  vst1q_u8(out + 16, vreinterpretq_u8_u16(vmovl_high_u8(bytes)));
  return BeyondAscii(bytes);
}

inline BlockMask NarrowBlock(const char16_t* from, char* to) {
  const uint8x16_t bytes = LoadBlock(from);
  vst1q_u8(reinterpret_cast<std::uint8_t*>(to), bytes);
  return BeyondAscii(bytes);
}

#else

// A bit for each unit.
using BlockMask = unsigned;

inline std::size_t FirstSet(BlockMask mask) {
  return static_cast<std::size_t>(__builtin_ctz(mask));
}

inline BlockMask BeyondAscii(const char* from) {
  BlockMask mask = 0;
  for (unsigned i = 0; i < kAsciiBlock; ++i) {
    mask |= BlockMask{static_cast<unsigned char>(from[i]) >= 0x80} << i;
  }
  return mask;
}

inline BlockMask BeyondAscii(const char16_t* from) {
  BlockMask mask = 0;
  for (unsigned i = 0; i < kAsciiBlock; ++i) mask |= BlockMask{from[i] >= 0x80} << i;
  return mask;
}

inline BlockMask WidenBlock(const char* from, char16_t* to) {
  for (unsigned i = 0; i < kAsciiBlock; ++i) to[i] = static_cast<unsigned char>(from[i]);
  return BeyondAscii(from);
}

inline BlockMask NarrowBlock(const char16_t* from, char* to) {
  for (unsigned i = 0; i < kAsciiBlock; ++i) to[i] = static_cast<char>(from[i]);
  return BeyondAscii(from);
}

#endif

#if !defined(__SSE2__)

inline bool WidenStretch(const char* from, char16_t* to) {
  return (WidenBlock(from, to) | WidenBlock(from + kAsciiBlock, to + kAsciiBlock)) == 0;
}

inline bool NarrowStretch(const char16_t* from, char* to) {
  return (NarrowBlock(from, to) | NarrowBlock(from + kAsciiBlock, to + kAsciiBlock)) == 0;
}

#endif

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_ASCII_BLOCK_H_

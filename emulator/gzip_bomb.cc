// SPDX-License-Identifier: MIT
#include "emulator/gzip_bomb.h"

#include <zlib.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace stowra_emulator {
namespace {

constexpr std::size_t kInflatedSize = std::size_t{1} << 30;
constexpr std::size_t kSegmentSize = std::size_t{16} << 20;
constexpr std::size_t kDeflateChunk = std::size_t{64} << 10;
constexpr int kRawDeflate = -MAX_WBITS;

struct EndDeflate {
  void operator()(z_stream* stream) const { deflateEnd(stream); }
};

struct Segment {
  std::string deflated;
  uLong crc = crc32(0, nullptr, 0);
};

// Deflates kSegmentSize spaces. The final full flush ends on a byte boundary and drops the history.
// That makes the segment repeatable.
Segment MakeSegment() {
  z_stream stream = {};
  if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, kRawDeflate, MAX_MEM_LEVEL,
                   Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::bad_alloc();
  }
  const std::unique_ptr<z_stream, EndDeflate> end_deflate(&stream);
  std::array<Bytef, kDeflateChunk> spaces;
  spaces.fill(' ');
  std::array<Bytef, kDeflateChunk> output;
  Segment segment;
  for (std::size_t done = 0; done < kSegmentSize; done += kDeflateChunk) {
    stream.next_in = spaces.data();
    stream.avail_in = kDeflateChunk;
    segment.crc = crc32(segment.crc, spaces.data(), kDeflateChunk);
    const int flush = done + kDeflateChunk == kSegmentSize ? Z_FULL_FLUSH : Z_NO_FLUSH;
    do {
      stream.next_out = output.data();
      stream.avail_out = kDeflateChunk;
      deflate(&stream, flush);
      segment.deflated.append(reinterpret_cast<const char*>(output.data()),
                              kDeflateChunk - stream.avail_out);
    } while (stream.avail_out == 0);
  }
  return segment;
}

void AppendLittleEndian(std::uint32_t number, std::string& text) {
  for (int shift = 0; shift < 32; shift += 8) text += static_cast<char>(number >> shift & 0xFF);
}

std::string MakeBomb() {
  const Segment segment = MakeSegment();
  std::string bomb("\x1F\x8B\x08\0\0\0\0\0\x02\xFF", 10);
  uLong crc = crc32(0, nullptr, 0);
  for (std::size_t done = 0; done < kInflatedSize; done += kSegmentSize) {
    bomb += segment.deflated;
    crc = crc32_combine(crc, segment.crc, kSegmentSize);
  }
  // An empty last block, then the checksum and the size.
  bomb.append("\x03\0", 2);
  AppendLittleEndian(static_cast<std::uint32_t>(crc), bomb);
  AppendLittleEndian(static_cast<std::uint32_t>(kInflatedSize), bomb);
  return bomb;
}

}  // namespace

const std::string& GzipBomb() {
  static const std::string bomb = MakeBomb();
  return bomb;
}

}  // namespace stowra_emulator

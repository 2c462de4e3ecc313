// SPDX-License-Identifier: MIT
#include "emulator/picture/png.h"

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace stowra_emulator {
namespace {

constexpr std::size_t kBytesOfPixel = 3;

void AppendNumber(std::string& out, std::uint32_t number) {
  for (const int shift : {24, 16, 8, 0}) out += static_cast<char>(number >> shift & 0xFF);
}

// `type` has four letters. The checksum covers them too.
void AppendChunk(std::string& out, const char* type, std::string_view data) {
  AppendNumber(out, static_cast<std::uint32_t>(data.size()));
  const std::string chunk = type + std::string(data);
  out += chunk;
  const uLong checksum =
      crc32(0, reinterpret_cast<const Bytef*>(chunk.data()), static_cast<uInt>(chunk.size()));
  AppendNumber(out, static_cast<std::uint32_t>(checksum));
}

std::string Header(int width, int height) {
  std::string header;
  AppendNumber(header, static_cast<std::uint32_t>(width));
  AppendNumber(header, static_cast<std::uint32_t>(height));
  // Eight bits a colour, true colour, the standard methods, not interlaced.
  return header + std::string("\x08\x02\0\0\0", 5);
}

// Each row begins with the number of its filter. This one stores differences from the row above,
// which compress well.
std::string Filtered(std::size_t row_size, std::string_view pixels) {
  constexpr char kUp = 2;
  std::string rows;
  rows.reserve(pixels.size() + pixels.size() / row_size);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    if (i % row_size == 0) rows += kUp;
    const char above = i < row_size ? '\0' : pixels[i - row_size];
    rows += static_cast<char>(pixels[i] - above);
  }
  return rows;
}

std::string Deflated(std::string_view bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::string deflated(size, '\0');
  const int result = compress2(reinterpret_cast<Bytef*>(deflated.data()), &size,
                               reinterpret_cast<const Bytef*>(bytes.data()),
                               static_cast<uLong>(bytes.size()), Z_BEST_COMPRESSION);
  if (result != Z_OK) throw std::runtime_error("cannot compress a picture");
  deflated.resize(size);
  return deflated;
}

}  // namespace

std::string EncodePng(int width, int height, std::string_view pixels) {
  std::string png = "\x89PNG\r\n\x1A\n";
  AppendChunk(png, "IHDR", Header(width, height));
  AppendChunk(png, "IDAT",
              Deflated(Filtered(static_cast<std::size_t>(width) * kBytesOfPixel, pixels)));
  AppendChunk(png, "IEND", "");
  return png;
}

}  // namespace stowra_emulator

// SPDX-License-Identifier: MIT
#include "tests/platform/http/gzip_text.h"

#include <zlib.h>

#include <random>
#include <stdexcept>

namespace stowra_test {

std::string Gzip(std::string_view text) {
  constexpr int kGzipWindow = MAX_WBITS + 16;
  z_stream stream = {};
  if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, kGzipWindow, MAX_MEM_LEVEL,
                   Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::runtime_error("no memory for zlib");
  }
  std::string out(deflateBound(&stream, text.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  const int status = deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  if (status != Z_STREAM_END) throw std::runtime_error("zlib did not finish");
  return out;
}

std::string Incompressible(std::size_t size) {
  std::mt19937 random;
  std::string text(size, '\0');
  for (char& byte : text) byte = static_cast<char>(random());
  return text;
}

}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/gzip_decoder.h"

#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <new>

#include "common_stowraapi/platform/http/body_buffer.h"

namespace ovrant::internet {

namespace {

// Added to the window size, it makes zlib accept gzip only.
constexpr int kGzipOnly = 16;

constexpr std::size_t kOutputStep = std::size_t{64} << 10;

// zlib takes lengths as unsigned int.
constexpr std::size_t kLargestInput = std::size_t{1} << 30;

}  // namespace

GzipDecoder::GzipDecoder() : stream_(std::make_unique<z_stream_s>()) {
  *stream_ = {};
  if (inflateInit2(stream_.get(), MAX_WBITS + kGzipOnly) != Z_OK) throw std::bad_alloc();
}

GzipDecoder::~GzipDecoder() { inflateEnd(stream_.get()); }

GzipDecoder::Result GzipDecoder::Decode(const void* data, std::size_t length, std::size_t cap,
                                        BodyBuffer& out) {
  auto* next = static_cast<Bytef*>(const_cast<void*>(data));
  bool output_full = false;
  while (length > 0 || output_full) {
    if (at_end_) inflateReset(stream_.get());
    at_end_ = false;

    // One byte of room beyond the cap shows whether the body exceeds it.
    const std::size_t room = std::min(kOutputStep, cap - out.size() + (cap < SIZE_MAX ? 1 : 0));
    const std::size_t input = std::min(length, kLargestInput);
    stream_->next_in = next;
    stream_->avail_in = static_cast<uInt>(input);
    stream_->next_out = out.Room(room);
    stream_->avail_out = static_cast<uInt>(room);
    const int status = inflate(stream_.get(), Z_NO_FLUSH);
    if (status == Z_MEM_ERROR) throw std::bad_alloc();

    const std::size_t used = input - stream_->avail_in;
    next += used;
    length -= used;
    out.Grow(room - stream_->avail_out);
    if (out.size() > cap) return Result::kTooLarge;
    at_end_ = status == Z_STREAM_END;
    // Z_BUF_ERROR only says that all input is used and no output is left.
    if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR) return Result::kCorrupt;
    output_full = !at_end_ && stream_->avail_out == 0;
  }
  return Result::kOk;
}

}  // namespace ovrant::internet

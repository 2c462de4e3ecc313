// SPDX-License-Identifier: MIT
// The gzip content encoding (RFC 1952).

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_GZIP_DECODER_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_GZIP_DECODER_H_

#include <cstddef>
#include <memory>

struct z_stream_s;

namespace ovrant::internet {

class BodyBuffer;

// Decodes one gzip stream of one or more members while it arrives.
class GzipDecoder {
 public:
  enum class Result { kOk, kCorrupt, kTooLarge };

  // Throws std::bad_alloc when memory runs out.
  GzipDecoder();
  ~GzipDecoder();

  GzipDecoder(const GzipDecoder&) = delete;
  GzipDecoder& operator=(const GzipDecoder&) = delete;

  // Decodes the next `length` bytes and appends the result to `out`. Throws std::bad_alloc when
  // memory runs out. After any result but kOk the decoder cannot be used again.
  //
  //   kTooLarge: `out` would exceed `cap` bytes.
  //   kCorrupt:  the data is not gzip, or a checksum is wrong.
  Result Decode(const void* data, std::size_t length, std::size_t cap, BodyBuffer& out);

  // True when the stream may end here: after a whole member, or before the first byte. A response
  // may announce gzip and have no body.
  bool AtEnd() const { return at_end_; }

 private:
  std::unique_ptr<z_stream_s> stream_;
  bool at_end_ = true;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_GZIP_DECODER_H_

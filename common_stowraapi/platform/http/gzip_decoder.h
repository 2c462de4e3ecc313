// The gzip content encoding (RFC 1952).

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_GZIP_DECODER_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_GZIP_DECODER_H_

#include <cstddef>
#include <memory>

struct z_stream_s;

namespace ovrant::internet {

class BodyBuffer;

// Decodes one gzip stream, of one or more members, while it arrives.
class GzipDecoder {
 public:
  enum class Result { kOk, kCorrupt, kTooLarge };

  // std::bad_alloc when there is no memory for it.
  GzipDecoder();
  ~GzipDecoder();

  GzipDecoder(const GzipDecoder&) = delete;
  GzipDecoder& operator=(const GzipDecoder&) = delete;

  // Decodes the next `length` bytes to the end of `out`. kTooLarge as soon as `out` would exceed
  // `cap` bytes; kCorrupt for anything that is not gzip, wrong check sums among it. The decoder is
  // of no use after either. std::bad_alloc when there is no memory.
  Result Decode(const void* data, std::size_t length, std::size_t cap, BodyBuffer& out);

  // Whether the stream may end here: after a whole member, or before the first byte (a response may
  // announce the encoding and have no body).
  bool AtEnd() const { return at_end_; }

 private:
  std::unique_ptr<z_stream_s> stream_;
  bool at_end_ = true;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_GZIP_DECODER_H_

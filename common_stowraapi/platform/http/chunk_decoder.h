// The chunked transfer coding of HTTP (RFC 9112, 7.1).

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_CHUNK_DECODER_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_CHUNK_DECODER_H_

#include <cstddef>
#include <string_view>

namespace ovrant::internet {

// Takes the coding off one body and knows its end. There is one here because libcurl does not tell
// an end of the body from an end of the connection while it sends. For one thread at a time.
class ChunkDecoder {
 public:
  // The next piece of the body in `encoded`, which begins behind it afterwards. Empty when there is
  // none in all of it; then `encoded` is empty.
  std::string_view Next(std::string_view& encoded);

  // Whether the last chunk and its trailer have come. Never where the coding is broken.
  bool AtEnd() const { return part_ == Part::kEnd; }

 private:
  enum class Part { kSize, kExtension, kData, kDataEnd, kTrailer, kEnd, kBroken };

  void Take(char c);
  void TakeSize(char c);

  Part part_ = Part::kSize;
  bool has_size_ = false;
  std::size_t left_ = 0;       // of the chunk
  bool is_line_empty_ = true;  // of the trailer
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_CHUNK_DECODER_H_

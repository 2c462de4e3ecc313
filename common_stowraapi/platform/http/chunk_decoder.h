// The chunked transfer coding of HTTP (RFC 9112, 7.1).

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_CHUNK_DECODER_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_CHUNK_DECODER_H_

#include <cstddef>
#include <string_view>

namespace ovrant::internet {

// Decodes one chunked body and finds its end. During an upload libcurl does not tell the end of the
// body from the end of the connection, so the transport decodes such bodies itself. For one thread
// at a time.
class ChunkDecoder {
 public:
  // Returns the next piece of the body and removes it from `encoded`. When `encoded` holds no more
  // of the body, the piece and `encoded` are empty.
  std::string_view Next(std::string_view& encoded);

  // True after the last chunk and its trailer section. Never true when the coding is broken.
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

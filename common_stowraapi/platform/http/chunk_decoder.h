// SPDX-License-Identifier: MIT
// The chunked transfer coding of HTTP (RFC 9112, 7.1).

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_CHUNK_DECODER_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_CHUNK_DECODER_H_

#include <cstddef>
#include <string_view>

namespace ovrant::internet {

// Decodes one chunked body and finds its end. For one thread at a time.
//
// libcurl could do that, but not for an upload: while it still sends, it does not report the end of
// a chunked reply. It also takes a size line such as "0x5" for the end of the body.
class ChunkDecoder {
 public:
  // The longest line with a chunk's size and extensions.
  static constexpr std::size_t kMaxSizeLine = std::size_t{8} << 10;

  // The longest line of the trailing section. libcurl has a limit just above it.
  static constexpr std::size_t kMaxTrailerLine = 4000;

  // Returns the next piece of the body and removes it from `encoded`. When `encoded` holds no more
  // of the body, the piece and `encoded` are empty.
  std::string_view Next(std::string_view& encoded);

  // True after the last chunk and its trailing section. Never true when the coding is broken.
  bool AtEnd() const { return part_ == Part::kEnd; }

  // True when the bytes so far do not follow the coding. It stays so.
  bool IsBroken() const { return part_ == Part::kBroken; }

  // Whether it is broken by a line of the trailing section that is too long.
  bool IsTrailerTooLong() const { return line_length_ > kMaxTrailerLine && trailer_bytes_ > 0; }

  // Complete lines of the trailing section, and all its bytes.
  std::size_t trailer_lines() const { return trailer_lines_; }
  std::size_t trailer_bytes() const { return trailer_bytes_; }

 private:
  enum class Part { kSize, kExtension, kData, kDataEnd, kTrailer, kEnd, kBroken };

  void Take(char c);
  void TakeSizeLine(char c);
  void TakeTrailer(char c);

  Part part_ = Part::kSize;
  bool has_size_ = false;
  std::size_t left_ = 0;         // of the chunk
  std::size_t line_length_ = 0;  // of the line that is read, in a trailer without its end
  bool has_colon_ = false;       // in the trailer line
  bool is_folded_ = false;       // the trailer line begins with a blank
  std::size_t trailer_lines_ = 0;
  std::size_t trailer_bytes_ = 0;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_CHUNK_DECODER_H_

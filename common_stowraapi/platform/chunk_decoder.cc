#include "common_stowraapi/platform/chunk_decoder.h"

namespace ovrant::internet {

namespace {

// The value of a hexadecimal digit, or -1.
int HexValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  return -1;
}

}  // namespace

std::string_view ChunkDecoder::Next(std::string_view& encoded) {
  while (!encoded.empty() && part_ != Part::kEnd) {
    if (part_ == Part::kData) {
      const std::string_view piece = encoded.substr(0, left_);
      encoded.remove_prefix(piece.size());
      left_ -= piece.size();
      if (left_ == 0) part_ = Part::kDataEnd;
      return piece;
    }
    Take(encoded.front());
    encoded.remove_prefix(1);
  }
  encoded = {};
  return {};
}

// Lines end with a line feed, and what is before it hardly matters.
void ChunkDecoder::Take(char c) {
  switch (part_) {
    case Part::kSize:
      if (const int digit = HexValue(c); digit >= 0) {
        left_ = left_ * 16 + static_cast<std::size_t>(digit);
        return;
      }
      part_ = Part::kExtension;
      [[fallthrough]];
    case Part::kExtension:
      if (c == '\n') part_ = left_ > 0 ? Part::kData : Part::kTrailer;
      return;
    case Part::kDataEnd:
      if (c == '\n') part_ = Part::kSize;
      return;
    case Part::kTrailer:
      if (c == '\n' && is_line_empty_) part_ = Part::kEnd;
      is_line_empty_ = c == '\n' || (is_line_empty_ && c == '\r');
      return;
    case Part::kData:
    case Part::kEnd:
      return;
  }
}

}  // namespace ovrant::internet

#include "common_stowraapi/platform/http/chunk_decoder.h"

#include <limits>

namespace ovrant::internet {

namespace {

constexpr std::size_t kLargest = std::numeric_limits<std::size_t>::max();

// The value of a hexadecimal digit, or -1.
int HexValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  return -1;
}

}  // namespace

std::string_view ChunkDecoder::Next(std::string_view& encoded) {
  while (!encoded.empty() && part_ != Part::kEnd && part_ != Part::kBroken) {
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

// A bare line feed also ends a line.
void ChunkDecoder::Take(char c) {
  switch (part_) {
    case Part::kSize:
      TakeSize(c);
      return;
    case Part::kExtension:
      if (c == '\n') part_ = left_ > 0 ? Part::kData : Part::kTrailer;
      return;
    case Part::kDataEnd:
      if (c == '\n') {
        part_ = Part::kSize;
        has_size_ = false;
      } else if (c != '\r') {
        part_ = Part::kBroken;
      }
      return;
    case Part::kTrailer:
      if (c == '\n' && is_line_empty_) part_ = Part::kEnd;
      is_line_empty_ = c == '\n' || (is_line_empty_ && c == '\r');
      return;
    case Part::kData:
    case Part::kEnd:
    case Part::kBroken:
      return;
  }
}

void ChunkDecoder::TakeSize(char c) {
  const int digit = HexValue(c);
  if (digit < 0) {
    part_ = has_size_ ? Part::kExtension : Part::kBroken;
    if (has_size_) Take(c);
  } else if (left_ > kLargest / 16) {
    part_ = Part::kBroken;
  } else {
    left_ = left_ * 16 + static_cast<std::size_t>(digit);
    has_size_ = true;
  }
}

}  // namespace ovrant::internet

// SPDX-License-Identifier: MIT
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

// Whether `c` may follow the digits of a size: a line end, an extension, or blanks before them.
bool EndsSize(char c) { return c == '\r' || c == '\n' || c == ';' || c == ' ' || c == '\t'; }

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
    case Part::kExtension:
      if (++line_length_ > kMaxSizeLine) {
        part_ = Part::kBroken;
      } else {
        TakeSizeLine(c);
      }
      return;
    case Part::kDataEnd:
      if (c == '\n') {
        part_ = Part::kSize;
        has_size_ = false;
        line_length_ = 0;
      } else if (c != '\r' || ++line_length_ > 1) {
        part_ = Part::kBroken;
      }
      return;
    case Part::kTrailer:
      TakeTrailer(c);
      return;
    case Part::kData:
    case Part::kEnd:
    case Part::kBroken:
      return;
  }
}

void ChunkDecoder::TakeSizeLine(char c) {
  const int digit = part_ == Part::kSize ? HexValue(c) : -1;
  if (digit >= 0 && left_ <= kLargest / 16) {
    left_ = left_ * 16 + static_cast<std::size_t>(digit);
    has_size_ = true;
  } else if (part_ == Part::kSize && (!has_size_ || !EndsSize(c))) {
    part_ = Part::kBroken;
  } else if (c == '\n') {
    part_ = left_ > 0 ? Part::kData : Part::kTrailer;
    line_length_ = 0;
  } else {
    part_ = Part::kExtension;
  }
}

// The section ends with an empty line. Each other line has a name and a colon, or continues the
// line before.
void ChunkDecoder::TakeTrailer(char c) {
  ++trailer_bytes_;
  if (c == '\r') return;
  if (c != '\n') {
    if (line_length_ == 0) is_folded_ = trailer_lines_ > 0 && (c == ' ' || c == '\t');
    has_colon_ = has_colon_ || (c == ':' && line_length_ > 0);
    if (++line_length_ > kMaxTrailerLine || c == '\0') part_ = Part::kBroken;
  } else if (line_length_ == 0) {
    part_ = Part::kEnd;
  } else if (!has_colon_ && !is_folded_) {
    part_ = Part::kBroken;
  } else {
    ++trailer_lines_;
    line_length_ = 0;
    has_colon_ = false;
  }
}

}  // namespace ovrant::internet

// SPDX-License-Identifier: MIT
#include "host/counting_source.h"

#include <utility>

namespace stowra {

std::size_t CountText(std::string_view bytes, std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = bytes.find(text); at != std::string_view::npos;
       at = bytes.find(text, at + 1)) {
    ++count;
  }
  return count;
}

CountingSource::CountingSource(BodySource& body, std::string text)
    : body_(body), text_(std::move(text)) {}

bool CountingSource::Rewind() {
  count_ = 0;
  size_ = 0;
  tail_.clear();
  return body_.Rewind();
}

std::optional<std::uint64_t> CountingSource::Length() { return body_.Length(); }

bool CountingSource::Read(unsigned char* data, std::size_t size, std::size_t& count) {
  if (!body_.Read(data, size, count)) return false;
  size_ += count;
  const std::string_view piece(reinterpret_cast<const char*>(data), count);
  const std::size_t most = text_.size() - 1;
  const std::string seam = tail_ + std::string(piece.substr(0, most));
  count_ += CountText(seam, text_) + CountText(piece, text_);
  const std::string_view end = piece.size() < most ? seam : piece;
  tail_ = end.substr(end.size() < most ? 0 : end.size() - most);
  return true;
}

}  // namespace stowra

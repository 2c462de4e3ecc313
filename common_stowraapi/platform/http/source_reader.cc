// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/source_reader.h"

#include <algorithm>

namespace ovrant::internet {

namespace {

constexpr Failure kSourceFailed{TransferError::kBody, "the host's source failed"};
constexpr Failure kSourceTooShort{TransferError::kBody,
                                  "the host's source ended before its length"};
constexpr Failure kSourceTooLong{TransferError::kBody, "the host's source exceeds its length"};

}  // namespace

Failure SourceReader::Rewind() noexcept {
  at_end_ = false;
  const Failure failure = gates_.Call(kSourceFailed, [this] {
    if (!source_->Rewind()) return false;
    length_ = source_->Length();
    return true;
  });
  if (failure) return failure;
  left_ = length_.value_or(0);
  return length_ && left_ == 0 ? ExpectEnd() : kNoFailure;
}

Failure SourceReader::Read(char* data, std::size_t size, std::size_t& count) noexcept {
  count = 0;
  if (at_end_) return kNoFailure;
  auto* const bytes = reinterpret_cast<unsigned char*>(data);
  const std::size_t most =
      length_ ? static_cast<std::size_t>(std::min<std::uint64_t>(size, left_)) : size;
  if (const Failure failure = ReadSome(bytes, most, count)) return failure;
  if (!length_) {
    at_end_ = count == 0;
    return kNoFailure;
  }
  if (count == 0) return kSourceTooShort;
  left_ -= count;
  return left_ == 0 ? ExpectEnd() : kNoFailure;
}

Failure SourceReader::ReadSome(unsigned char* data, std::size_t size, std::size_t& count) noexcept {
  return gates_.Call(kSourceFailed, [this, data, size, &count] {
    count = 0;
    return source_->Read(data, size, count) && count <= size;
  });
}

Failure SourceReader::ExpectEnd() noexcept {
  unsigned char byte = 0;
  std::size_t count = 0;
  if (const Failure failure = ReadSome(&byte, 1, count)) return failure;
  at_end_ = count == 0;
  return at_end_ ? kNoFailure : kSourceTooLong;
}

}  // namespace ovrant::internet

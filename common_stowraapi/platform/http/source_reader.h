// SPDX-License-Identifier: MIT
// The host's source, as the transfer that sends it sees it.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_SOURCE_READER_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_SOURCE_READER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "common_stowraapi/platform/body_source.h"
#include "common_stowraapi/platform/http/body_gates.h"
#include "common_stowraapi/platform/http/failure.h"

namespace ovrant::internet {

// Reads a body and holds it to the length that it announces. No exception leaves it. For one thread
// at a time.
class SourceReader {
 public:
  explicit SourceReader(std::shared_ptr<BodySource> source) : source_(std::move(source)) {}

  // Set before the first call of the source.
  void set_gates(const BodyGates& gates) { gates_ = gates; }

  // What the host's code took since the last call.
  BodyGates::Clock::duration TakeHostTime() { return gates_.TakeTime(); }

  // Goes to the beginning and asks for the length. Call it before each request.
  Failure Rewind() noexcept;

  // Reads at most `size` bytes and sets `count`. 0 is the end. Does not read the last bytes of a
  // body of known length unless the source ends with them.
  Failure Read(char* data, std::size_t size, std::size_t& count) noexcept;

  // Of the last Rewind.
  std::optional<std::uint64_t> length() const { return length_; }

  // True when the whole body has been read.
  bool at_end() const { return at_end_; }

 private:
  Failure ReadSome(unsigned char* data, std::size_t size, std::size_t& count) noexcept;
  Failure ExpectEnd() noexcept;

  const std::shared_ptr<BodySource> source_;
  BodyGates gates_;
  std::optional<std::uint64_t> length_;
  std::uint64_t left_ = 0;  // of a known length
  bool at_end_ = false;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_SOURCE_READER_H_

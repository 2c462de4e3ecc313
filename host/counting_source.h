// SPDX-License-Identifier: MIT
// Counts how often a text occurs in a body, while the body is sent.

#ifndef HOST_COUNTING_SOURCE_H_
#define HOST_COUNTING_SOURCE_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common_stowraapi/platform/body_source.h"

namespace stowra {

// How often `text`, which must not be empty, occurs in `bytes`. Overlaps count.
std::size_t CountText(std::string_view bytes, std::string_view text);

// Hands `body`, which must live longer, on to the transport.
class CountingSource : public ovrant::internet::BodySource {
 public:
  // `text` must not be empty.
  CountingSource(BodySource& body, std::string text);

  // In the bytes since the last Rewind, and the number of these bytes.
  std::size_t count() const { return count_; }
  std::uint64_t size() const { return size_; }

  bool Rewind() override;
  std::optional<std::uint64_t> Length() override;
  bool Read(unsigned char* data, std::size_t size, std::size_t& count) override;

 private:
  BodySource& body_;
  const std::string text_;
  std::size_t count_ = 0;
  std::uint64_t size_ = 0;
  std::string tail_;  // the last bytes so far, too few to hold the text
};

}  // namespace stowra

#endif  // HOST_COUNTING_SOURCE_H_

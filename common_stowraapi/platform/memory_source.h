// SPDX-License-Identifier: MIT
// Bytes in memory as the body of an upload.

#ifndef COMMON_STOWRAAPI_PLATFORM_MEMORY_SOURCE_H_
#define COMMON_STOWRAAPI_PLATFORM_MEMORY_SOURCE_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/body_source.h"

namespace ovrant::internet {

// Owns its bytes.
class STOWRA_EXPORT MemorySource final : public BodySource {
 public:
  explicit MemorySource(std::string bytes) : bytes_(std::move(bytes)) {}

  bool Rewind() override {
    read_ = 0;
    return true;
  }
  std::optional<std::uint64_t> Length() override { return bytes_.size(); }
  bool Read(unsigned char* data, std::size_t size, std::size_t& count) override {
    count = bytes_.copy(reinterpret_cast<char*>(data), size, read_);
    read_ += count;
    return true;
  }

 private:
  const std::string bytes_;
  std::size_t read_ = 0;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_MEMORY_SOURCE_H_

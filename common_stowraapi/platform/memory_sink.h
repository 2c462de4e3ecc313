// SPDX-License-Identifier: MIT
// The body of a download as a string.

#ifndef COMMON_STOWRAAPI_PLATFORM_MEMORY_SINK_H_
#define COMMON_STOWRAAPI_PLATFORM_MEMORY_SINK_H_

#include <cstddef>
#include <string>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/body_sink.h"

namespace ovrant::internet {

// Has no limit of its own. A body larger than memory makes the download fail with kOutOfMemory.
class STOWRA_EXPORT MemorySink final : public BodySink {
 public:
  // Drops what an earlier request has written.
  ovrant::utils::StringMap RequestHeaders() override {
    bytes_.clear();
    return {};
  }
  bool Write(const unsigned char* data, std::size_t size) override {
    bytes_.append(reinterpret_cast<const char*>(data), size);
    return true;
  }

  // What the last transfer has written. The body, if that transfer succeeded.
  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_MEMORY_SINK_H_

// SPDX-License-Identifier: MIT
// A file as the body of an upload.

#ifndef COMMON_STOWRAAPI_PLATFORM_FILE_SOURCE_H_
#define COMMON_STOWRAAPI_PLATFORM_FILE_SOURCE_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/body_source.h"

namespace ovrant::internet {

// Reads the file piece by piece. A file that grows or shrinks while it is sent makes the upload
// fail. One that is not regular, such as a pipe, has no length and can be read once.
class STOWRA_EXPORT FileSource final : public BodySource {
 public:
  // Opens the file. On failure, also for a folder, error() says why, and each upload of this source
  // fails.
  explicit FileSource(const std::string& path);
  ~FileSource() override;

  // The errno of the first failure, 0 without one.
  int error() const { return error_; }

  bool Rewind() override;
  std::optional<std::uint64_t> Length() override;
  bool Read(unsigned char* data, std::size_t size, std::size_t& count) override;

 private:
  bool Fail(int error);

  const int descriptor_;
  int error_ = 0;
  bool has_read_ = false;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_FILE_SOURCE_H_

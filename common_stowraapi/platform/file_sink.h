// SPDX-License-Identifier: MIT
// The body of a download as a file.

#ifndef COMMON_STOWRAAPI_PLATFORM_FILE_SINK_H_
#define COMMON_STOWRAAPI_PLATFORM_FILE_SINK_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/body_sink.h"

namespace ovrant::internet {

class PartFile;

// Takes a body with status 200, and 206 when it continues a part. The file gets its name only when
// it is whole and on the disk. Until then it is called `path` with ".part" at its end. A part that
// exists there is replaced, unless another FileSink has it: a FileSink keeps its part until the
// file has its name or the FileSink is destroyed.
//
// After a failure the part stays if a later download can continue it: the server has sent a strong
// validator (RFC 9110, 8.8), and writing did not fail. A file with ".part.validator" at its end
// then holds the validator. Otherwise nothing new stays.
//
// A download that continues asks the server for the rest of the part. If the server does not have
// the same thing any more, or sends no rest, the download begins anew. The part must come from the
// same URL. Compressed bytes cannot be continued, so a FileSink never asks for them.
class STOWRA_EXPORT FileSink final : public BodySink {
 public:
  enum class Start { kAnew, kContinue };
  enum class Existing {
    kReplace,  // the file of that name, and keep its mode. If it is a link, replace its target.
    kKeep,     // fail with EEXIST
  };

  // Opens nothing yet. Throws std::bad_alloc when memory runs out.
  explicit FileSink(const std::string& path, Start start = Start::kAnew,
                    Existing existing = Existing::kReplace);
  ~FileSink() override;

  // The errno of the last download's failure, 0 without one. Among others:
  //   - EEXIST: something else than a file has the name, or kKeep found a file.
  //   - EWOULDBLOCK: another FileSink has the part.
  //   - EBADMSG: the server sent another number of bytes than it said.
  //   - ENOENT: the folder or the part has been removed meanwhile.
  int error() const { return error_; }

  // The bytes of the file so far, and how many of them an earlier download has written.
  std::uint64_t size() const { return size_; }
  std::uint64_t continued_size() const { return continued_size_; }

  // True when there is a part that a later download can continue.
  bool CanContinue() const;

  // As for every BodySink. For the transport to call.
  ovrant::utils::StringMap RequestHeaders() override;
  Choice Begin(int status, const ovrant::utils::StringMap& headers) override;
  bool Write(const unsigned char* data, std::size_t size) override;
  bool End() override;

 private:
  Choice BeginAnew(const ovrant::utils::StringMap& headers);
  bool IsTheRest(const ovrant::utils::StringMap& headers);
  bool Succeeds(int error);

  const std::unique_ptr<PartFile> part_;
  const Start start_;
  const Existing existing_;
  int error_ = 0;
  bool asked_for_rest_ = false;
  bool part_is_busy_ = false;
  std::optional<std::uint64_t> total_;  // bytes of the whole, if the server tells
  std::uint64_t size_ = 0;
  std::uint64_t continued_size_ = 0;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_FILE_SINK_H_

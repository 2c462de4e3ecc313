// SPDX-License-Identifier: MIT
// The file of a download, named by the user or by the server.

#ifndef HOST_DOWNLOAD_SINK_H_
#define HOST_DOWNLOAD_SINK_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "common_stowraapi/platform/body_sink.h"
#include "common_stowraapi/platform/file_sink.h"

namespace stowra {

// A FileSink that is made when its name is known. Takes only a whole body, or the rest of one. For
// one download.
class DownloadSink final : public ovrant::internet::BodySink {
 public:
  // Without `file` the server's headers and then `url` name the file, which may not exist yet. With
  // `continues` an earlier download of `file` goes on.
  DownloadSink(const std::string& file, std::string url, bool continues,
               ovrant::internet::FileSink::Existing existing);

  // Closes the file and removes what cannot be continued. No function may follow. Only when the
  // transport calls this object no more.
  void Close() { sink_.reset(); }

  // Empty before the file has a name.
  const std::string& file() const { return file_; }

  // As FileSink says. Without a file 0 and false.
  int error() const { return sink_ ? sink_->error() : 0; }
  std::uint64_t size() const { return sink_ ? sink_->size() : 0; }
  std::uint64_t continued_size() const { return sink_ ? sink_->continued_size() : 0; }
  bool CanContinue() const { return sink_ && sink_->CanContinue(); }

  ovrant::utils::StringMap RequestHeaders() override;
  Choice Begin(int status, const ovrant::utils::StringMap& headers) override;
  bool Write(const unsigned char* data, std::size_t size) override;
  bool End() override;

 private:
  const std::string url_;
  std::string file_;
  std::optional<ovrant::internet::FileSink> sink_;
};

}  // namespace stowra

#endif  // HOST_DOWNLOAD_SINK_H_

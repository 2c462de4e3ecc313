// SPDX-License-Identifier: MIT
#include "host/download_sink.h"

#include <utility>

#include "host/download_name.h"
#include "host/http_status.h"
#include "host/response_headers.h"

namespace stowra {

using ovrant::internet::FileSink;
using ovrant::utils::StringMap;

DownloadSink::DownloadSink(const std::string& file, std::string url, bool continues,
                           FileSink::Existing existing)
    : url_(std::move(url)), file_(file) {
  if (file.empty()) return;
  sink_.emplace(file, continues ? FileSink::Start::kContinue : FileSink::Start::kAnew, existing);
}

// Without a name yet, the headers are those of any FileSink that begins anew.
StringMap DownloadSink::RequestHeaders() {
  return sink_ ? sink_->RequestHeaders() : FileSink("").RequestHeaders();
}

DownloadSink::Choice DownloadSink::Begin(int status, const StringMap& headers) {
  if (!sink_) {
    if (status != kHttpOk) return Choice::kLeave;
    file_ = ChooseFileName(FindHeader(headers, "Content-Disposition"), url_);
    sink_.emplace(file_, FileSink::Start::kAnew, FileSink::Existing::kKeep);
  }
  return sink_->Begin(status, headers);
}

bool DownloadSink::Write(const unsigned char* data, std::size_t size) {
  return sink_->Write(data, size);
}

bool DownloadSink::End() { return sink_->End(); }

}  // namespace stowra

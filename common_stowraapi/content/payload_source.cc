// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/payload_source.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "common_stowraapi/content/payload_frame.h"
#include "common_stowraapi/platform/file_source.h"

namespace ovrant::stowraapiclient::multipartupload {

using ovrant::internet::BodySource;
using ovrant::internet::FileSource;
using ovrant::utils::ovrant_ustring;

namespace {

// Gives the text before the file, the file, and the text after it.
class PayloadSource final : public BodySource {
 public:
  PayloadSource(PayloadFrame frame, const std::string& path)
      : frame_(std::move(frame)), content_(path) {}

  // 0, or an errno.
  int error() const { return content_.error(); }

  bool Rewind() override {
    place_ = Place::kBefore;
    read_ = 0;
    return content_.Rewind();
  }

  std::optional<std::uint64_t> Length() override {
    const auto length = content_.Length();
    if (!length) return std::nullopt;
    return frame_.before.size() + *length + frame_.after.size();
  }

  bool Read(unsigned char* data, std::size_t size, std::size_t& count) override {
    if (place_ == Place::kBefore) {
      count = Copy(frame_.before, data, size);
      if (count > 0) return true;
      place_ = Place::kContent;
    }
    if (place_ == Place::kContent) {
      if (!content_.Read(data, size, count)) return false;
      if (count > 0) return true;
      place_ = Place::kAfter;
      read_ = 0;
    }
    count = Copy(frame_.after, data, size);
    return true;
  }

 private:
  enum class Place { kBefore, kContent, kAfter };

  std::size_t Copy(const std::string& text, unsigned char* data, std::size_t size) {
    const std::size_t count = text.copy(reinterpret_cast<char*>(data), size, read_);
    read_ += count;
    return count;
  }

  const PayloadFrame frame_;
  FileSource content_;
  Place place_ = Place::kBefore;
  std::size_t read_ = 0;  // of the text at this place
};

}  // namespace

std::unique_ptr<BodySource> MakePayloadSource(const ovrant_ustring& subject_id,
                                              const UploadFile* file, const std::string& path,
                                              const std::string& boundary) {
  auto source =
      std::make_unique<PayloadSource>(MakePayloadFrame(subject_id, *file, boundary), path);
  if (source->error() == 0) return source;
  errno = source->error();
  return nullptr;
}

}  // namespace ovrant::stowraapiclient::multipartupload

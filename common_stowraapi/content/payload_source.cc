// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/payload_source.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <optional>
#include <utility>

#include "common_stowraapi/content/payload_frame.h"

namespace ovrant::stowraapiclient::multipartupload {

using ovrant::internet::BodySource;
using ovrant::utils::ovrant_ustring;

namespace {

// Gives the text before the file, the file, and the text after it. Reads the file by itself: a host
// may bring a platform that has no FileSource.
class PayloadSource final : public BodySource {
 public:
  PayloadSource(PayloadFrame frame, const std::string& path) : frame_(std::move(frame)) {
    content_.open(path, std::ios::in | std::ios::binary);
  }

  bool is_open() const { return content_.is_open(); }

  // A pipe cannot go back, and need not before its first byte is read.
  bool Rewind() override {
    place_ = Place::kBefore;
    read_ = 0;
    if (has_read_ && content_.pubseekpos(0) != std::streampos(0)) return false;
    has_read_ = false;
    return true;
  }

  std::optional<std::uint64_t> Length() override {
    const std::streamoff length = content_.pubseekoff(0, std::ios::end);
    if (length < 0 || content_.pubseekpos(0) != std::streampos(0)) return std::nullopt;
    return frame_.before.size() + static_cast<std::uint64_t>(length) + frame_.after.size();
  }

  bool Read(unsigned char* data, std::size_t size, std::size_t& count) override {
    if (place_ == Place::kBefore) {
      count = Copy(frame_.before, data, size);
      if (count > 0) return true;
      place_ = Place::kContent;
    }
    if (place_ == Place::kContent) {
      has_read_ = true;
      count = static_cast<std::size_t>(
          content_.sgetn(reinterpret_cast<char*>(data), static_cast<std::streamsize>(size)));
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
  std::filebuf content_;
  bool has_read_ = false;
  Place place_ = Place::kBefore;
  std::size_t read_ = 0;  // of the text at this place
};

}  // namespace

std::unique_ptr<BodySource> MakePayloadSource(const ovrant_ustring& subject_id,
                                              const UploadFile* file, const std::string& path,
                                              const std::string& boundary) {
  auto source =
      std::make_unique<PayloadSource>(MakePayloadFrame(subject_id, *file, boundary), path);
  if (!source->is_open()) return nullptr;
  return source;
}

}  // namespace ovrant::stowraapiclient::multipartupload

// SPDX-License-Identifier: MIT
#include "emulator/request_body.h"

#include <cstddef>
#include <string_view>

namespace stowra_emulator {
namespace {

constexpr std::size_t kMaxParts = 100;

// Gets the parts of a form from the engine's parser.
class FormReader {
 public:
  FormReader(const Limits& limits, const std::string& folder, RequestBody& body)
      : limits_(limits), folder_(folder), body_(body) {}

  // False if the form is too large.
  bool BeginPart(const httplib::MultipartFormData& head) {
    part_ = &body_.form.emplace(head.name, FormPart())->second;
    part_->content_type = head.content_type;
    part_->file_name = head.filename;
    if (!head.filename.empty()) part_->file = std::make_shared<SpooledFile>(folder_);
    is_too_large_ = body_.form.size() > kMaxParts;
    return !is_too_large_;
  }

  bool Append(std::string_view bytes) {
    if (part_->file != nullptr) {
      part_->file->Append(bytes);
      return true;
    }
    texts_ += bytes.size();
    is_too_large_ = texts_ > limits_.form_texts;
    if (!is_too_large_) part_->text += bytes;
    return !is_too_large_;
  }

  bool is_too_large() const { return is_too_large_; }

 private:
  const Limits& limits_;
  const std::string& folder_;
  RequestBody& body_;
  FormPart* part_ = nullptr;
  std::uint64_t texts_ = 0;
  bool is_too_large_ = false;
};

BodyResult ResultOf(bool was_read, bool is_too_large) {
  if (is_too_large) return BodyResult::kTooLarge;
  return was_read ? BodyResult::kRead : BodyResult::kMalformed;
}

}  // namespace

BodyResult ReadBody(const httplib::Request& request, const httplib::ContentReader& reader,
                    const Limits& limits, const std::string& folder, RequestBody& body) {
  if (request.is_multipart_form_data()) {
    FormReader form(limits, folder, body);
    const bool was_read =
        reader([&form](const httplib::MultipartFormData& head) { return form.BeginPart(head); },
               [&form](const char* data, std::size_t size) {
                 return form.Append({data, size});
               });
    return ResultOf(was_read, form.is_too_large());
  }
  bool is_too_large = false;
  const bool was_read = reader([&](const char* data, std::size_t size) {
    is_too_large = size > limits.body - body.text.size();
    if (!is_too_large) body.text.append(data, size);
    return !is_too_large;
  });
  return ResultOf(was_read, is_too_large);
}

}  // namespace stowra_emulator

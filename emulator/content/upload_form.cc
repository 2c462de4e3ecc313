// SPDX-License-Identifier: MIT
#include "emulator/content/upload_form.h"

#include <algorithm>
#include <iterator>

#include "emulator/request_error.h"
#include "emulator/web_address.h"

namespace stowra_emulator {
namespace {

// Null if there is no such part. Throws if there are several.
const FormPart* FindPart(const RequestBody& body, const char* name) {
  const auto [first, last] = body.form.equal_range(name);
  if (first == last) return nullptr;
  if (std::next(first) != last) {
    throw RequestError(400, "the part '" + std::string(name) + "' comes twice");
  }
  return &first->second;
}

const FormPart& GetPart(const RequestBody& body, const char* name) {
  const FormPart* part = FindPart(body, name);
  if (part == nullptr) throw RequestError(400, "the part '" + std::string(name) + "' is missing");
  return *part;
}

std::string OptionalText(const RequestBody& body, const char* name) {
  const FormPart* part = FindPart(body, name);
  return part == nullptr ? std::string() : part->text;
}

bool ReadIsZipped(const RequestBody& body) {
  const std::string text = OptionalText(body, "isZipped");
  if (text == "true") return true;
  if (text.empty() || text == "false") return false;
  throw RequestError(400, "the part 'isZipped' must be true or false");
}

// Downloads send it in a header, where a decoded line end would begin another field.
std::string ReadContentType(const FormPart& part) {
  std::string type = PercentDecode(part.content_type);
  const bool is_printable =
      std::all_of(type.begin(), type.end(), [](char c) { return c >= ' ' && c <= '~'; });
  if (!is_printable) {
    throw RequestError(400, "the content type of 'binary' must be printable ASCII");
  }
  return type;
}

}  // namespace

UploadForm ReadUploadForm(const httplib::Request& request, const RequestBody& body) {
  if (!request.is_multipart_form_data()) {
    throw RequestError(400, "the body must be multipart/form-data");
  }
  const FormPart& binary = GetPart(body, "binary");
  if (binary.file_name.empty()) throw RequestError(400, "the part 'binary' has no filename");
  UploadForm form;
  // Clients copy these four from the upload address without decoding them.
  form.name = PercentDecode(GetPart(body, "name").text);
  form.content_type = ReadContentType(binary);
  form.task = PercentDecode(OptionalText(body, "task"));
  form.priority = PercentDecode(OptionalText(body, "priority"));
  form.subject_id = GetPart(body, "subjectId").text;
  form.subject_class = GetPart(body, "subjectClass").text;
  form.file_name = binary.file_name;
  form.is_zipped = ReadIsZipped(body);
  form.file = binary.file;
  return form;
}

}  // namespace stowra_emulator

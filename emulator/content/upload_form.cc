#include "emulator/content/upload_form.h"

#include <algorithm>
#include <iterator>

#include "emulator/request_error.h"
#include "emulator/web_address.h"

namespace stowra_emulator {
namespace {

using httplib::MultipartFormData;

// Null if there is no such part. Throws if there are several.
const MultipartFormData* FindPart(const httplib::Request& request, const char* name) {
  const auto [first, last] = request.files.equal_range(name);
  if (first == last) return nullptr;
  if (std::next(first) != last) {
    throw RequestError(400, "the part '" + std::string(name) + "' comes twice");
  }
  return &first->second;
}

const MultipartFormData& GetPart(const httplib::Request& request, const char* name) {
  const MultipartFormData* part = FindPart(request, name);
  if (part == nullptr) throw RequestError(400, "the part '" + std::string(name) + "' is missing");
  return *part;
}

std::string OptionalText(const httplib::Request& request, const char* name) {
  const MultipartFormData* part = FindPart(request, name);
  return part == nullptr ? std::string() : part->content;
}

bool ReadIsZipped(const httplib::Request& request) {
  const std::string text = OptionalText(request, "isZipped");
  if (text == "true") return true;
  if (text.empty() || text == "false") return false;
  throw RequestError(400, "the part 'isZipped' must be true or false");
}

// Downloads send it in a header, where a decoded line end would begin another field.
std::string ReadContentType(const MultipartFormData& part) {
  std::string type = PercentDecode(part.content_type);
  const bool is_printable =
      std::all_of(type.begin(), type.end(), [](char c) { return c >= ' ' && c <= '~'; });
  if (!is_printable) {
    throw RequestError(400, "the content type of 'binary' must be printable ASCII");
  }
  return type;
}

}  // namespace

UploadForm ReadUploadForm(const httplib::Request& request) {
  if (!request.is_multipart_form_data()) {
    throw RequestError(400, "the body must be multipart/form-data");
  }
  const MultipartFormData& binary = GetPart(request, "binary");
  if (binary.filename.empty()) throw RequestError(400, "the part 'binary' has no filename");
  UploadForm form;
  // Clients copy these four from the upload address without decoding them.
  form.name = PercentDecode(GetPart(request, "name").content);
  form.content_type = ReadContentType(binary);
  form.task = PercentDecode(OptionalText(request, "task"));
  form.priority = PercentDecode(OptionalText(request, "priority"));
  form.subject_id = GetPart(request, "subjectId").content;
  form.subject_class = GetPart(request, "subjectClass").content;
  form.file_name = binary.filename;
  form.is_zipped = ReadIsZipped(request);
  form.bytes = binary.content;
  return form;
}

}  // namespace stowra_emulator

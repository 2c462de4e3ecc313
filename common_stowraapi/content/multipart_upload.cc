#include "common_stowraapi/content/multipart_upload.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>
#include <vector>

#include "common_stowraapi/content/text_search.h"
#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/platform/random.h"

using ovrant::stowraapiclient::Length;
using ovrant::stowraapiclient::UploadFile;
using ovrant::utils::GetFileName;
using ovrant::utils::ovrant_ustring;

// The value behind `key`, such as "name=", in the query of the upload URL; empty without one.
static std::string ParseFieldFromUploadUrl(const UploadFile* file, ovrant_ustring key) {
  const int key_length = Length(key);
  for (const ovrant_ustring& token : file->upload_url_.TokenizeToVector("&?")) {
    if (token.Left(key_length).compare(key) == 0) {
      return token.Right(Length(token) - key_length).utf8();
    }
  }
  return {};
}

namespace ovrant::stowraapiclient::multipartupload {
namespace {

constexpr std::string_view kBoundaryPrefix = "BrevixClient";
constexpr int kBoundaryDigits = 16;
constexpr std::string_view kLineEnd = "\r\n";

// Writes the parts of a body. Unformatted: the stream's width, fill and flags are its owner's.
class BodyWriter {
 public:
  BodyWriter(const std::string& boundary, std::ostream& out) : boundary_(boundary), out_(out) {}

  void WriteField(std::string_view name, std::string_view value) {
    BeginPart(name);
    Write({"\r\n\r\n", value, kLineEnd});
  }

  void WriteFile(std::string_view name, std::string_view file_name, std::string_view type,
                 std::string_view content) {
    BeginPart(name);
    Write(
        {"; filename=\"", file_name, "\"\r\nContent-Type: ", type, "\r\n\r\n", content, kLineEnd});
  }

  void WriteEnd() { Write({"--", boundary_, "--", kLineEnd}); }

 private:
  void BeginPart(std::string_view name) {
    Write({"--", boundary_, "\r\nContent-Disposition: form-data; name=\"", name, "\""});
  }

  void Write(std::initializer_list<std::string_view> pieces) {
    for (const std::string_view piece : pieces) {
      out_.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    }
  }

  const std::string& boundary_;
  std::ostream& out_;
};

}  // namespace

std::string GetBoundaryString() {
  Random::SetSeed(static_cast<std::uint32_t>(std::time(nullptr)));
  char digits[kBoundaryDigits + 1] = {};
  for (int i = 0; i < kBoundaryDigits; ++i) {
    std::snprintf(digits + i, sizeof(digits) - static_cast<std::size_t>(i), "%i",
                  Random::GetValue(0, 9));
  }
  std::string boundary;
  boundary.reserve(kBoundaryPrefix.size() + kBoundaryDigits);
  boundary += kBoundaryPrefix;
  boundary += digits;
  return boundary;
}

void SetupPayload(const ovrant_ustring& subject_id, const UploadFile* file,
                  const unsigned char* data, unsigned long length, const std::string& boundary,
                  std::stringstream* out) {
  const ovrant_ustring& path = file->zipped_ ? file->zipped_file_path_ : file->file_path_;
  const std::string file_name = GetFileName(path, true).utf8();
  const std::string name = ParseFieldFromUploadUrl(file, "name=");
  const std::string type = ParseFieldFromUploadUrl(file, "type=");
  const std::string subject = subject_id.utf8();
  const std::string task = ParseFieldFromUploadUrl(file, "task=");
  const std::string priority = ParseFieldFromUploadUrl(file, "priority=");

  BodyWriter body(boundary, *out);
  body.WriteField("name", name);
  body.WriteField("subjectId", subject.c_str());
  body.WriteField("subjectClass", "entity");
  body.WriteFile("binary", file_name, type, {reinterpret_cast<const char*>(data), length});
  if (!task.empty()) body.WriteField("task", task);
  if (!priority.empty()) body.WriteField("priority", priority);
  if (file->zipped_) body.WriteField("isZipped", "true");
  body.WriteEnd();
}

std::map<ovrant_ustring, ovrant_ustring> CreateHeaderDictionary(const std::string& boundary,
                                                                unsigned long content_length) {
  ovrant_ustring length;
  length.Format("%i", static_cast<int>(static_cast<std::uint32_t>(content_length)));
  std::map<ovrant_ustring, ovrant_ustring> headers;
  headers[L"Proxy-Connection"] = L"keep-alive";
  headers[L"Content-Length"] = length;
  headers[L"Content-Type"] = ovrant_ustring(L"multipart/form-data; boundary=") + boundary.c_str();
  return headers;
}

}  // namespace ovrant::stowraapiclient::multipartupload

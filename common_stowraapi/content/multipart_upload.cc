// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/multipart_upload.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <initializer_list>
#include <ios>
#include <new>
#include <string_view>
#include <vector>

#include "common_stowraapi/content/payload_frame.h"
#include "common_stowraapi/content/text_search.h"
#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/platform/random.h"

using ovrant::stowraapiclient::Length;
using ovrant::stowraapiclient::UploadFile;
using ovrant::utils::GetFileName;
using ovrant::utils::ovrant_ustring;

// The value after `key`, such as "name=", in the query of the upload URL. Empty if the key is
// absent.
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

// Appends parts of a body to a text.
class PartWriter {
 public:
  PartWriter(std::string_view boundary, std::string& out) : boundary_(boundary), out_(out) {}

  void AddField(std::string_view name, std::string_view value) {
    BeginPart(name);
    Add({"\r\n\r\n", value, kLineEnd});
  }

  // The part's headers, up to the content of the file.
  void BeginFile(std::string_view name, std::string_view file_name, std::string_view type) {
    BeginPart(name);
    Add({"; filename=\"", file_name, "\"\r\nContent-Type: ", type, "\r\n\r\n"});
  }

  void EndFile() { Add({kLineEnd}); }
  void AddEnd() { Add({"--", boundary_, "--", kLineEnd}); }

 private:
  void BeginPart(std::string_view name) {
    Add({"--", boundary_, "\r\nContent-Disposition: form-data; name=\"", name, "\""});
  }

  void Add(std::initializer_list<std::string_view> pieces) {
    for (const std::string_view piece : pieces) out_ += piece;
  }

  const std::string_view boundary_;
  std::string& out_;
};

// A stream doubles its memory when it is full: a file of 256 MiB and its few headers would take
// 512. This gives an empty stream a first text of zeros, of a size that reaches `size` bytes by
// doubling, and the body overwrites it. Any other stream stays as it is.
void PrepareToWrite(std::size_t size, std::stringstream& out) {
  constexpr std::size_t kLargestBeginning = 1 << 16;
  std::stringbuf& buffer = *out.rdbuf();
  if (!out.good() || static_cast<std::ios&>(out).rdbuf() != &buffer) return;
  if (buffer.pubseekoff(0, std::ios::cur, std::ios::out) != 0) return;
  if (buffer.pubseekoff(0, std::ios::end, std::ios::out) != 0) {
    buffer.pubseekpos(0, std::ios::out);
    return;
  }
  while (size > kLargestBeginning) size -= size / 2;
  try {
    buffer.str(std::string(size, '\0'));
  } catch (const std::bad_alloc&) {
    return;
  }
  // A stream opened to append would write behind the zeros.
  if (buffer.pubseekoff(0, std::ios::cur, std::ios::out) != 0) buffer.str({});
}

// Ignores the stream's width, fill and flags, which are the caller's.
void Write(std::string_view bytes, std::ostream& out) {
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

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

PayloadFrame MakePayloadFrame(const ovrant_ustring& subject_id, const UploadFile& file,
                              const std::string& boundary) {
  const ovrant_ustring& path = file.zipped_ ? file.zipped_file_path_ : file.file_path_;
  const std::string file_name = GetFileName(path, true).utf8();
  const std::string name = ParseFieldFromUploadUrl(&file, "name=");
  const std::string type = ParseFieldFromUploadUrl(&file, "type=");
  const std::string subject = subject_id.utf8();
  const std::string task = ParseFieldFromUploadUrl(&file, "task=");
  const std::string priority = ParseFieldFromUploadUrl(&file, "priority=");

  PayloadFrame frame;
  PartWriter first(boundary, frame.before);
  first.AddField("name", name);
  first.AddField("subjectId", subject.c_str());
  first.AddField("subjectClass", "entity");
  first.BeginFile("binary", file_name, type);

  PartWriter last(boundary, frame.after);
  last.EndFile();
  if (!task.empty()) last.AddField("task", task);
  if (!priority.empty()) last.AddField("priority", priority);
  if (file.zipped_) last.AddField("isZipped", "true");
  last.AddEnd();
  return frame;
}

void SetupPayload(const ovrant_ustring& subject_id, const UploadFile* file,
                  const unsigned char* data, unsigned long length, const std::string& boundary,
                  std::stringstream* out) {
  const PayloadFrame frame = MakePayloadFrame(subject_id, *file, boundary);
  PrepareToWrite(frame.before.size() + length + frame.after.size(), *out);
  Write(frame.before, *out);
  Write({reinterpret_cast<const char*>(data), length}, *out);
  Write(frame.after, *out);
}

std::map<ovrant_ustring, ovrant_ustring> CreateHeaderDictionary(const std::string& boundary,
                                                                unsigned long content_length) {
  ovrant_ustring length;
  length.Format("%i", static_cast<int>(static_cast<std::uint32_t>(content_length)));
  const std::string type = "multipart/form-data; boundary=" + boundary;
  std::map<ovrant_ustring, ovrant_ustring> headers;
  headers[L"Proxy-Connection"] = L"keep-alive";
  headers[L"Content-Length"] = length;
  headers[L"Content-Type"] = ovrant_ustring(type.data(), type.size());
  return headers;
}

}  // namespace ovrant::stowraapiclient::multipartupload

// SPDX-License-Identifier: MIT
// The body and the headers of an upload, compared with a second writer and read back. The input is
//   - a byte of choices and two bytes for the length in the headers,
//   - the boundary, the subject, the upload URL, the path of the file and the path of the other
//     file, each ended by a byte 01,
//   - and the bytes of the file.
// An empty boundary stands for one as the library makes them.
//
// All texts are written as they are, but some do not read back. A file name cannot carry a
// quotation mark or a line end. A content type cannot carry a line end or blanks around it. No
// content can carry a line that begins with the boundary. In those cases only the writing is
// compared.

#include "common_stowraapi/content/multipart_upload.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/platform/ustring.h"
#include "fuzz/content/multipart_reader.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

namespace {

using ovrant::stowraapiclient::UploadFile;
using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;
using stowra_fuzz::FormPart;

constexpr char kSeparator = '\x01';

struct Choices {
  bool zipped;
  bool after_text;  // something is in the stream already
  bool appending;   // the stream was opened to append
  bool formatted;   // the stream has a width and a fill
  bool failed;      // the stream takes nothing
  bool swapped;     // the two bytes are the upper ones of 32 bits
};

Choices ReadChoices(std::uint8_t bits) {
  return {(bits & 1) != 0, (bits & 2) != 0,  (bits & 4) != 0,
          (bits & 8) != 0, (bits & 16) != 0, (bits & 128) != 0};
}

// All in UTF-8, as the library has it once it made texts of the bytes.
struct Upload {
  std::string boundary;
  std::string subject;
  std::string url;
  std::string path;
  std::string other_path;
  std::string data;
  bool zipped = false;
};

ovrant_ustring Text(std::string_view utf8) { return ovrant_ustring(utf8.data(), utf8.size()); }

Upload ReadUpload(stowra_fuzz::Input& input, bool zipped) {
  Upload upload;
  upload.boundary = input.Until(kSeparator);
  if (upload.boundary.empty()) upload.boundary = "BrevixClient0385119264730052";
  upload.subject = Text(input.Until(kSeparator)).utf8();
  upload.url = Text(input.Until(kSeparator)).utf8();
  upload.path = Text(input.Until(kSeparator)).utf8();
  upload.other_path = Text(input.Until(kSeparator)).utf8();
  upload.data = input.Rest();
  upload.zipped = zipped;
  return upload;
}

// Behind the key in the first piece of the URL that begins with it; "&" and "?" divide the pieces.
std::string Field(const std::string& url, const std::string& key) {
  std::string piece;
  for (const char c : url + '&') {
    if (c != '&' && c != '?') {
      piece += c;
      continue;
    }
    if (piece.compare(0, key.size(), key) == 0) return piece.substr(key.size());
    piece.clear();
  }
  return {};
}

std::vector<FormPart> Parts(const Upload& upload) {
  const std::string task = Field(upload.url, "task=");
  const std::string priority = Field(upload.url, "priority=");
  const std::string file_name = upload.path.substr(upload.path.rfind('/') + 1);
  std::vector<FormPart> parts;
  const auto add = [&parts](const char* name, const std::string& content) {
    parts.push_back({name, std::nullopt, std::nullopt, content});
  };
  add("name", Field(upload.url, "name="));
  add("subjectId", upload.subject.substr(0, upload.subject.find('\0')));
  add("subjectClass", "entity");
  parts.push_back({"binary", file_name, Field(upload.url, "type="), upload.data});
  if (!task.empty()) add("task", task);
  if (!priority.empty()) add("priority", priority);
  if (upload.zipped) add("isZipped", "true");
  return parts;
}

std::string Written(const std::vector<FormPart>& parts, const std::string& boundary) {
  std::string body;
  for (const FormPart& part : parts) {
    body += "--" + boundary + "\r\n";
    body += "Content-Disposition: form-data; name=\"" + part.name + "\"";
    if (part.file_name) body += "; filename=\"" + *part.file_name + "\"";
    body += "\r\n";
    if (part.type) body += "Content-Type: " + *part.type + "\r\n";
    body += "\r\n" + part.content + "\r\n";
  }
  return body + "--" + boundary + "--\r\n";
}

bool CanBeCarried(const std::vector<FormPart>& parts, const std::string& boundary) {
  constexpr std::size_t kNone = std::string::npos;
  if (!stowra_fuzz::IsBoundary(boundary)) return false;
  for (const FormPart& part : parts) {
    if (("\r\n" + part.content).find("\r\n--" + boundary) != kNone) return false;
    if (part.file_name && part.file_name->find_first_of("\"\r\n") != kNone) return false;
    if (!part.type || part.type->empty()) continue;
    if (part.type->find_first_of("\r\n") != kNone) return false;
    const std::string ends = {part.type->front(), part.type->back()};
    if (ends.find_first_of(" \t") != kNone) return false;
  }
  return true;
}

UploadFile File(const Upload& upload) {
  UploadFile file;
  file.zipped_ = upload.zipped;
  file.upload_url_ = Text(upload.url);
  file.file_path_ = Text(upload.zipped ? upload.other_path : upload.path);
  file.zipped_file_path_ = Text(upload.zipped ? upload.path : upload.other_path);
  // Of no account in the body.
  file.type_ = "type";
  file.name_ = "name";
  file.format_ = "format";
  return file;
}

// What the stream holds behind what was in it before.
std::string Body(const Upload& upload, const Choices& choices) {
  const std::string before = choices.after_text ? "before" : "";
  const auto mode = std::ios::in | std::ios::out;
  std::stringstream stream(choices.appending ? mode | std::ios::app : mode);
  stream << before;
  if (choices.formatted) {
    stream.width(4000);
    stream.fill('*');
  }
  if (choices.failed) stream.setstate(std::ios::failbit);
  const UploadFile file = File(upload);
  const auto* const data = reinterpret_cast<const unsigned char*>(upload.data.data());
  ovrant::stowraapiclient::multipartupload::SetupPayload(
      Text(upload.subject), &file, upload.data.empty() ? nullptr : data,
      static_cast<unsigned long>(upload.data.size()), upload.boundary, &stream);
  FUZZ_CHECK(stream.fail() == choices.failed);
  const std::string all = stream.str();
  FUZZ_CHECK(all.compare(0, before.size(), before) == 0);
  return all.substr(before.size());
}

void CheckHeaders(const std::string& boundary, unsigned long length) {
  const StringMap headers =
      ovrant::stowraapiclient::multipartupload::CreateHeaderDictionary(boundary, length);
  // The lowest 32 bits, as a signed number.
  constexpr long long kRange = 1LL << 32;
  long long shown = static_cast<long long>(length % static_cast<unsigned long>(kRange));
  if (shown >= kRange / 2) shown -= kRange;
  const StringMap expected = {{"Content-Length", std::to_string(shown).c_str()},
                              {"Content-Type", Text("multipart/form-data; boundary=" + boundary)},
                              {"Proxy-Connection", "keep-alive"}};
  FUZZ_CHECK(headers == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  stowra_fuzz::Input input(data, size);
  const Choices choices = ReadChoices(input.Byte());
  const unsigned long word = input.Word();
  const Upload upload = ReadUpload(input, choices.zipped);

  const std::string body = Body(upload, choices);
  const std::vector<FormPart> parts = Parts(upload);
  FUZZ_CHECK(body == (choices.failed ? "" : Written(parts, upload.boundary)));
  if (!choices.failed && CanBeCarried(parts, upload.boundary)) {
    const auto found = stowra_fuzz::ReadMultipart(body, upload.boundary);
    FUZZ_CHECK(found.has_value());
    FUZZ_CHECK(*found == parts);
  }
  CheckHeaders(upload.boundary, choices.swapped ? word << 16 | 0xFFFF : word);
  return 0;
}

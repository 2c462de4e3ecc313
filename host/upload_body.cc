// SPDX-License-Identifier: MIT
#include "host/upload_body.h"

#include <ios>
#include <new>
#include <sstream>

#include "common_stowraapi/content/multipart_upload.h"
#include "host/string_sink.h"

namespace stowra {

using ovrant::stowraapiclient::UploadFile;
using ovrant::stowraapiclient::multipartupload::SetupPayload;
using ovrant::utils::ovrant_ustring;

namespace {

// Bytes; usually enough for the parts around the content.
constexpr std::size_t kRoomForParts = 4096;

}  // namespace

std::string MakeUploadBody(const ovrant_ustring& subject_id, const UploadFile& file,
                           std::string_view content, const std::string& boundary) {
  std::string body;
  body.reserve(content.size() + kRoomForParts);
  StringSink sink(body);
  std::stringstream out;
  static_cast<std::ios&>(out).rdbuf(&sink);
  SetupPayload(subject_id, &file, reinterpret_cast<const unsigned char*>(content.data()),
               content.size(), boundary, &out);
  // Only memory can run out here, and the stream swallows that exception.
  if (!out) throw std::bad_alloc();
  return body;
}

}  // namespace stowra

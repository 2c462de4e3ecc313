// SPDX-License-Identifier: MIT
#include "emulator/file_reply.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <utility>

#include "emulator/http_date.h"
#include "emulator/http_fields.h"
#include "emulator/json_reply.h"
#include "emulator/range.h"

namespace stowra_emulator {
namespace {

constexpr std::size_t kChunkSize = 64 << 10;

ByteRange RangeFor(const httplib::Request& request, const FileReply& reply,
                   const std::string& last_modified) {
  const std::string value = request.get_header_value(std::string(kHidden) + "Range");
  if (request.method != "GET" || value.empty()) return ByteRange();
  const std::string condition = request.get_header_value("If-Range");
  if (!condition.empty() && condition != reply.etag && condition != last_modified) {
    return ByteRange();
  }
  return ParseRange(value, reply.size);
}

void SetBody(const FileReply& reply, std::uint64_t offset, std::uint64_t length,
             httplib::Response& response) {
  if (length == 0) {
    response.set_content("", reply.type);
    return;
  }
  const auto provider = [read = reply.read, offset](std::size_t position, std::size_t left,
                                                    httplib::DataSink& sink) {
    std::array<char, kChunkSize> chunk;
    const std::size_t count = read(offset + position, chunk.data(), std::min(left, chunk.size()));
    return count > 0 && sink.write(chunk.data(), count);
  };
  response.set_content_provider(length, reply.type, provider);
}

}  // namespace

void SetBytes(FileReply& reply, std::string bytes) {
  reply.size = bytes.size();
  reply.read = [shared = std::make_shared<const std::string>(std::move(bytes))](
                   std::uint64_t offset, char* data, std::size_t size) {
    return shared->copy(data, size, static_cast<std::size_t>(offset));
  };
}

void SetFile(FileReply& reply, UploadStore::File file, std::uint64_t size) {
  reply.size = size;
  reply.read = [file = std::move(file)](std::uint64_t offset, char* data, std::size_t count) {
    ssize_t got = -1;
    do {
      got = ::pread(file->get(), data, count, static_cast<off_t>(offset));
    } while (got < 0 && errno == EINTR);
    return got < 0 ? std::size_t{0} : static_cast<std::size_t>(got);
  };
}

void AnswerFile(const httplib::Request& request, const FileReply& reply,
                httplib::Response& response) {
  const std::string last_modified = HttpDate(reply.updated);
  const ByteRange range = RangeFor(request, reply, last_modified);
  const std::string size = std::to_string(reply.size);
  if (range.kind == ByteRange::Kind::kUnsatisfiable) {
    response.set_header("Content-Range", "bytes */" + size);
    SetError(response, 416, "the file has only " + size + " bytes");
    return;
  }
  response.headers.erase("Accept-Ranges");
  response.set_header("Accept-Ranges", "bytes");
  response.set_header("ETag", reply.etag);
  if (!last_modified.empty()) response.set_header("Last-Modified", last_modified);
  if (range.kind == ByteRange::Kind::kWhole) {
    SetBody(reply, 0, reply.size, response);
    return;
  }
  const std::uint64_t last = range.offset + range.length - 1;
  response.status = 206;
  response.set_header("Content-Range", "bytes " + std::to_string(range.offset) + "-" +
                                           std::to_string(last) + "/" + size);
  SetBody(reply, range.offset, range.length, response);
}

}  // namespace stowra_emulator

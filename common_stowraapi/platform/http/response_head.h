// SPDX-License-Identifier: MIT
// The status line and the header fields of an HTTP response (RFC 9112).

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_RESPONSE_HEAD_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_RESPONSE_HEAD_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "common_stowraapi/platform/http/failure.h"
#include "common_stowraapi/platform/http/header_fields.h"

namespace ovrant::internet {

// Reads the header lines of one request's reply in order, with those of interim responses. The
// accessors describe the response whose status line came last. For one thread at a time.
class ResponseHead {
 public:
  // A reply with more bytes of header and trailer lines than this is refused.
  static constexpr std::size_t kMaxBytes = std::size_t{256} << 10;

  // Adds the next line, with its line end. A failure refuses the reply.
  Failure AddLine(std::string_view line);

  // Adds a line of the trailing section, which changes nothing but the count of bytes.
  Failure AddTrailer(std::string_view line);

  // Whether the empty line after the headers of a final response has come.
  bool complete() const { return complete_; }

  // 0 before the first status line.
  int status() const { return status_; }

  bool is_gzip() const { return is_gzip_; }
  bool is_chunked() const { return is_chunked_; }

  // The length of the body, if it is known. Chunked framing overrides Content-Length (RFC 9112,
  // 6.3).
  std::optional<std::size_t> content_length() const {
    return is_chunked_ ? std::nullopt : content_length_;
  }

  // True when the status allows no body, whatever the headers say.
  bool HasNoBody() const;

  // True for 301, 302, 303, 307 and 308 with a Location. Any other response is the reply itself,
  // also 300 and 304.
  bool IsRedirect() const;

  // The first Location that is not empty, as it came.
  const std::string& location() const { return location_; }

  // Bytes of all lines so far.
  std::size_t bytes() const { return bytes_; }

  const HeaderFields& fields() const { return fields_; }
  HeaderFields& fields() { return fields_; }

 private:
  bool BeginsResponse(std::string_view line) const;
  Failure BeginResponse(std::string_view line);
  Failure TakeField(std::string_view line);
  Failure TakeMeaning(std::string_view name, std::string_view value);
  Failure AddLengths(std::string_view list);

  std::size_t bytes_ = 0;
  int status_ = 0;
  bool complete_ = false;
  bool has_line_ = false;    // a header line since the status line
  bool in_framing_ = false;  // the last field frames or encodes the body
  bool is_gzip_ = false;
  bool is_chunked_ = false;
  bool is_unframed_ = false;  // Transfer-Encoding: identity
  std::optional<std::size_t> content_length_;
  std::string location_;
  HeaderFields fields_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_RESPONSE_HEAD_H_

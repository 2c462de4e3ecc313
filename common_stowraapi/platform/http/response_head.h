// The head of an HTTP response (RFC 9112): status and headers.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_RESPONSE_HEAD_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_RESPONSE_HEAD_H_

#include <cstddef>
#include <optional>
#include <string_view>

#include "common_stowraapi/platform/http/header_fields.h"

namespace ovrant::internet {

// Takes the header lines of one transfer in order, those of interim responses and of redirects too;
// what it says is about the response whose status line came last.
class ResponseHead {
 public:
  // Bytes of header lines beyond which one response is refused.
  static constexpr std::size_t kMaxBytes = std::size_t{256} << 10;

  // Takes the next line, with its line end. Null, or why the response must be refused (a text that
  // is never freed).
  const char* AddLine(std::string_view line);

  // The same for a line behind the body, which changes nothing whatever it says.
  const char* AddTrailer(std::string_view line);

  // Whether the last line began a response.
  bool at_beginning() const { return at_beginning_; }

  // Whether the empty line after a final response's headers has come.
  bool complete() const { return complete_; }

  // 0 before a status line.
  int status() const { return status_; }

  bool is_gzip() const { return is_gzip_; }
  bool is_chunked() const { return is_chunked_; }

  // The body's; none where chunks frame it, whatever length is given beside them (RFC 9112, 6.3).
  std::optional<std::size_t> content_length() const {
    return is_chunked_ ? std::nullopt : content_length_;
  }

  // Whether the response has no body whatever its headers say.
  bool HasNoBody() const;

  HeaderFields& fields() { return fields_; }

 private:
  bool BeginsResponse(std::string_view line) const;
  const char* TakeField(std::string_view line);
  const char* TakeMeaning(std::string_view name, std::string_view untrimmed);
  const char* AddLengths(std::string_view list);

  bool at_beginning_ = false;
  std::size_t bytes_ = 0;
  int status_ = 0;
  bool complete_ = false;
  bool in_framing_ = false;  // the last field says how the body is framed or encoded
  bool is_gzip_ = false;
  bool is_chunked_ = false;
  bool is_unframed_ = false;  // until the connection closes
  std::optional<std::size_t> content_length_;
  HeaderFields fields_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_RESPONSE_HEAD_H_

// The head of an HTTP response (RFC 9112): status and headers.

#ifndef COMMON_STOWRAAPI_PLATFORM_RESPONSE_HEAD_H_
#define COMMON_STOWRAAPI_PLATFORM_RESPONSE_HEAD_H_

#include <cstddef>
#include <optional>
#include <string_view>

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {

// Takes the header lines of one transfer in order, those of interim responses and of redirects too;
// what it says is about the response whose status line came last.
class ResponseHead {
 public:
  // Bytes of header lines beyond which one response is refused.
  static constexpr std::size_t kMaxBytes = std::size_t{256} << 10;

  // Whether `line` begins another response.
  bool BeginsResponse(std::string_view line) const;

  // Takes the next line, with its line end. Null, or why the response must be refused (a text that
  // is never freed).
  const char* AddLine(std::string_view line);

  // Whether the empty line after a final response's headers has come.
  bool complete() const { return complete_; }

  // 0 before a status line.
  int status() const { return status_; }

  bool is_gzip() const { return is_gzip_; }
  std::optional<std::size_t> content_length() const { return content_length_; }

  // Whether the response has no body whatever its headers say.
  bool HasNoBody() const;

  // Names as they were spelt; the values of a repeated one joined by ", ".
  ovrant::utils::StringMap& headers() { return headers_; }

 private:
  const char* AddHeader(std::string_view name, std::string_view value);
  const char* TakeMeaning(std::string_view name, std::string_view value);
  const char* AddLengths(std::string_view list);

  std::size_t bytes_ = 0;
  int status_ = 0;
  bool complete_ = false;
  bool is_gzip_ = false;
  std::optional<std::size_t> content_length_;
  ovrant::utils::StringMap headers_;
  // The header that a folded line continues.
  ovrant::utils::StringMap::iterator last_ = headers_.end();
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_RESPONSE_HEAD_H_

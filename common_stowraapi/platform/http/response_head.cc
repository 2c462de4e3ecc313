// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/response_head.h"

#include <algorithm>
#include <charconv>

#include "common_stowraapi/platform/http/header_text.h"

namespace ovrant::internet {

namespace {

constexpr Failure Malformed(const char* text) { return {TransferError::kMalformed, text}; }
constexpr Failure NotOffered(const char* text) { return {TransferError::kEncoding, text}; }

constexpr std::string_view kStatusLineStart = "HTTP/";
constexpr int kFirstFinalStatus = 200;
constexpr int kSwitchingProtocols = 101;
constexpr int kNoContent = 204;
constexpr int kNotModified = 304;

bool FramesBody(std::string_view name) {
  return EqualsIgnoringCase(name, "Content-Encoding") ||
         EqualsIgnoringCase(name, "Transfer-Encoding") ||
         EqualsIgnoringCase(name, "Content-Length");
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Returns 0 unless the line has a version, spaces and a status of three digits.
int ReadStatus(std::string_view line) {
  const std::string_view version = line.substr(kStatusLineStart.size());
  if (version.empty() || !IsDigit(version.front())) return 0;
  const std::size_t space = std::min(line.find(' '), line.size());
  const std::string_view text =
      line.substr(std::min(line.find_first_not_of(' ', space), line.size()));
  const bool is_status = text.size() >= 3 && std::all_of(text.begin(), text.begin() + 3, IsDigit) &&
                         text.front() != '0' && (text.size() == 3 || !IsDigit(text[3]));
  int status = 0;
  if (is_status) std::from_chars(text.data(), text.data() + 3, status);
  return status;
}

}  // namespace

bool ResponseHead::BeginsResponse(std::string_view line) const {
  return status_ < kFirstFinalStatus && StartsWithIgnoringCase(line, kStatusLineStart);
}

Failure ResponseHead::AddLine(std::string_view line) {
  bytes_ += line.size();
  if (bytes_ > kMaxBytes) return kHeadersTooLong;
  if (BeginsResponse(line)) return BeginResponse(line);
  if (status_ == 0 || complete_) return Malformed("the response has a header out of place");
  if (line.find_first_not_of("\r\n") == std::string_view::npos) {
    complete_ = status_ >= kFirstFinalStatus;
    return kNoFailure;
  }
  return TakeField(line);
}

Failure ResponseHead::AddTrailer(std::string_view line) {
  bytes_ += line.size();
  return bytes_ > kMaxBytes ? kHeadersTooLong : kNoFailure;
}

Failure ResponseHead::BeginResponse(std::string_view line) {
  const std::size_t bytes = bytes_;
  *this = ResponseHead();
  bytes_ = bytes;
  status_ = ReadStatus(line);
  if (status_ == 0) return Malformed("the response's status line is malformed");
  if (status_ == kSwitchingProtocols) return Malformed("the response switches the protocol");
  return kNoFailure;
}

// libcurl ignores framing fields with a blank before the colon, and their continuation lines. Other
// software does not, so both are refused.
Failure ResponseHead::TakeField(std::string_view line) {
  const bool is_folded = BeginsWithBlank(line);
  const std::size_t colon = line.find(':');
  const bool has_start = is_folded ? has_line_ : colon != std::string_view::npos && colon > 0;
  if (!has_start || line.find('\0') != std::string_view::npos) {
    return Malformed("the response has a malformed header line");
  }
  has_line_ = true;
  fields_.AddLine(line);
  if (is_folded) {
    return in_framing_ ? Malformed("the response folds a header that frames its body") : kNoFailure;
  }
  const std::string_view name = TrimHeaderText(line.substr(0, colon));
  const std::string_view value = TrimHeaderText(line.substr(colon + 1));
  if (location_.empty() && EqualsIgnoringCase(name, "Location")) location_ = value;
  in_framing_ = FramesBody(name);
  if (!in_framing_) return kNoFailure;
  if (name.size() != colon) return Malformed("the response has a blank in a header name");
  if (const Failure failure = TakeMeaning(name, value)) return failure;
  return is_unframed_ && content_length_
             ? Malformed("the response has both Content-Length and Transfer-Encoding: identity")
             : kNoFailure;
}

bool ResponseHead::IsRedirect() const {
  switch (status_) {
    case 301:
    case 302:
    case 303:
    case 307:
    case 308:
      return !location_.empty();
    default:
      return false;
  }
}

bool ResponseHead::HasNoBody() const { return status_ == kNoContent || status_ == kNotModified; }

// A list that repeats one number means that number (RFC 9110, 8.6).
Failure ResponseHead::AddLengths(std::string_view list) {
  for (std::size_t start = 0; start <= list.size();) {
    const std::size_t comma = std::min(list.find(',', start), list.size());
    const std::string_view digits = TrimHeaderText(list.substr(start, comma - start));
    std::size_t length = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), length);
    if (end.ec != std::errc() || end.ptr != digits.data() + digits.size()) {
      return Malformed("the response's Content-Length is not a number");
    }
    if (content_length_ && *content_length_ != length) {
      return Malformed("the response has two different lengths");
    }
    content_length_ = length;
    start = comma + 1;
  }
  return kNoFailure;
}

Failure ResponseHead::TakeMeaning(std::string_view name, std::string_view value) {
  if (EqualsIgnoringCase(name, "Content-Encoding")) {
    if (value.empty() || EqualsIgnoringCase(value, "identity")) return kNoFailure;
    const bool known = EqualsIgnoringCase(value, "gzip") || EqualsIgnoringCase(value, "x-gzip");
    if (!known || is_gzip_) {
      return NotOffered("the response has a content encoding that was not offered");
    }
    is_gzip_ = true;
  } else if (EqualsIgnoringCase(name, "Transfer-Encoding")) {
    const bool is_chunked = EqualsIgnoringCase(value, "chunked");
    is_unframed_ = EqualsIgnoringCase(value, "identity");
    if (!is_chunked && !is_unframed_) {
      return NotOffered("the response has a transfer encoding that was not offered");
    }
    is_chunked_ = is_chunked_ || is_chunked;
  } else {
    return AddLengths(value);
  }
  return kNoFailure;
}

}  // namespace ovrant::internet

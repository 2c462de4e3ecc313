#include "common_stowraapi/platform/http/response_head.h"

#include <algorithm>
#include <charconv>

#include "common_stowraapi/platform/http/header_text.h"

namespace ovrant::internet {

namespace {

constexpr char kTooLong[] = "the response's headers are too long";

constexpr std::string_view kStatusLineStart = "HTTP/";
constexpr int kFirstFinalStatus = 200;
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
  return (status_ == 0 || complete_ || status_ < kFirstFinalStatus) &&
         StartsWithIgnoringCase(line, kStatusLineStart);
}

const char* ResponseHead::AddLine(std::string_view line) {
  const bool begins_response = BeginsResponse(line);
  if (begins_response) {
    *this = ResponseHead();
    status_ = ReadStatus(line);
  }
  at_beginning_ = begins_response;
  bytes_ += line.size();
  if (bytes_ > kMaxBytes) return kTooLong;
  if (begins_response && status_ == 0) return "the response's status line is malformed";
  if (begins_response || complete_) return nullptr;
  if (std::all_of(line.begin(), line.end(), IsHeaderBlank)) {
    complete_ = status_ >= kFirstFinalStatus;
    return nullptr;
  }
  fields_.AddLine(line);
  return TakeField(line);
}

const char* ResponseHead::AddTrailer(std::string_view line) {
  at_beginning_ = false;
  bytes_ += line.size();
  return bytes_ > kMaxBytes ? kTooLong : nullptr;
}

// libcurl ignores framing fields with a blank before the colon, and their continuation lines. Other
// software does not, so both are refused.
const char* ResponseHead::TakeField(std::string_view line) {
  if (BeginsWithBlank(line)) {
    return in_framing_ ? "the response folds a header that frames its body" : nullptr;
  }
  const std::size_t colon = std::min(line.find(':'), line.size());
  const std::string_view name = TrimHeaderText(line.substr(0, colon));
  in_framing_ = FramesBody(name);
  if (!in_framing_ || colon == line.size()) return nullptr;
  if (name.size() != colon) return "the response has a blank in a header name";
  if (const char* why = TakeMeaning(name, line.substr(colon + 1))) return why;
  return is_unframed_ && content_length_
             ? "the response has both Content-Length and Transfer-Encoding: identity"
             : nullptr;
}

bool ResponseHead::HasNoBody() const { return status_ == kNoContent || status_ == kNotModified; }

// A list that repeats one number means that number (RFC 9110, 8.6).
const char* ResponseHead::AddLengths(std::string_view list) {
  for (std::size_t start = 0; start <= list.size();) {
    const std::size_t comma = std::min(list.find(',', start), list.size());
    const std::string_view digits = TrimHeaderText(list.substr(start, comma - start));
    std::size_t length = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), length);
    if (end.ec != std::errc() || end.ptr != digits.data() + digits.size()) {
      return "the response's Content-Length is not a number";
    }
    if (content_length_ && *content_length_ != length) {
      return "the response has two different lengths";
    }
    content_length_ = length;
    start = comma + 1;
  }
  return nullptr;
}

const char* ResponseHead::TakeMeaning(std::string_view name, std::string_view untrimmed) {
  if (EqualsIgnoringCase(name, "Content-Encoding")) {
    const std::string_view value = TrimHeaderText(untrimmed);
    if (value.empty() || EqualsIgnoringCase(value, "identity")) return nullptr;
    const bool known = EqualsIgnoringCase(value, "gzip") || EqualsIgnoringCase(value, "x-gzip");
    if (!known || is_gzip_) return "the response has a content encoding that was not offered";
    is_gzip_ = true;
  } else if (EqualsIgnoringCase(name, "Transfer-Encoding")) {
    const std::string_view value = TrimHeaderText(untrimmed);
    const bool is_chunked = EqualsIgnoringCase(value, "chunked");
    is_unframed_ = EqualsIgnoringCase(value, "identity");
    if (!is_chunked && !is_unframed_) {
      return "the response has a transfer encoding that was not offered";
    }
    is_chunked_ = is_chunked_ || is_chunked;
  } else {
    return AddLengths(untrimmed);
  }
  return nullptr;
}

}  // namespace ovrant::internet

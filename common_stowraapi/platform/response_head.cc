#include "common_stowraapi/platform/response_head.h"

#include <algorithm>
#include <charconv>

#include "common_stowraapi/platform/header_text.h"

namespace ovrant::internet {

namespace {

constexpr std::string_view kStatusLineStart = "HTTP/";
constexpr int kFirstFinalStatus = 200;
constexpr int kNoContent = 204;
constexpr int kNotModified = 304;

int ReadStatus(std::string_view line) {
  const std::size_t space = line.find(' ');
  int status = 0;
  if (space != std::string_view::npos) {
    const std::string_view digits = TrimHeaderText(line.substr(space));
    std::from_chars(digits.data(), digits.data() + digits.size(), status);
  }
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
  if (bytes_ > kMaxBytes) return "the response's headers are too long";
  if (begins_response || complete_) return nullptr;  // complete: a trailer after the body
  if (std::all_of(line.begin(), line.end(), IsHeaderBlank)) {
    complete_ = status_ >= kFirstFinalStatus;
    return nullptr;
  }
  fields_.AddLine(line);
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos || BeginsWithBlank(line)) return nullptr;
  return TakeMeaning(TrimHeaderText(line.substr(0, colon)), line.substr(colon + 1));
}

bool ResponseHead::HasNoBody() const { return status_ == kNoContent || status_ == kNotModified; }

// A list of one number repeated is that number (RFC 9110, 8.6).
const char* ResponseHead::AddLengths(std::string_view list) {
  for (std::size_t start = 0; start <= list.size();) {
    const std::size_t comma = std::min(list.find(',', start), list.size());
    const std::string_view digits = TrimHeaderText(list.substr(start, comma - start));
    std::size_t length = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), length);
    if (end.ec != std::errc() || end.ptr != digits.data() + digits.size()) {
      return "the response gives a length that is no number";
    }
    if (content_length_ && *content_length_ != length) {
      return "the response gives two different lengths";
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
    if (!EqualsIgnoringCase(value, "chunked") && !EqualsIgnoringCase(value, "identity")) {
      return "the response has a transfer encoding that was not offered";
    }
  } else if (EqualsIgnoringCase(name, "Content-Length")) {
    return AddLengths(untrimmed);
  }
  return nullptr;
}

}  // namespace ovrant::internet

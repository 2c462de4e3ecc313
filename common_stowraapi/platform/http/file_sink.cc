// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/file_sink.h"

#include <curl/curl.h>

#include <cerrno>
#include <charconv>
#include <ctime>
#include <optional>
#include <string_view>
#include <system_error>

#include "common_stowraapi/platform/http/header_text.h"
#include "common_stowraapi/platform/http/part_file.h"

namespace ovrant::internet {

using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

namespace {

constexpr int kOk = 200;
constexpr int kPartialContent = 206;
constexpr int kRangeNotSatisfiable = 416;

// A thing may change twice within the second that its Last-Modified names. A reply that is this
// much younger has its last state, even if the server's clocks differ a little.
constexpr std::time_t kSettled = 60;

std::string Find(const StringMap& headers, const char* name) {
  for (const auto& [key, value] : headers) {
    if (EqualsIgnoringCase(key.utf8(), name)) return value.utf8();
  }
  return {};
}

ovrant_ustring ToText(const std::string& bytes) {
  return ovrant_ustring(bytes.data(), bytes.size());
}

bool IsEtag(const std::string& validator) { return validator.front() == '"'; }

bool IsCoded(const StringMap& headers) {
  const std::string coding = Find(headers, "Content-Encoding");
  return !coding.empty() && !EqualsIgnoringCase(coding, "identity");
}

// The strong validator of a reply. Empty without one.
std::string FindValidator(const StringMap& headers) {
  if (IsCoded(headers)) return {};
  std::string etag = Find(headers, "ETag");
  if (!etag.empty() && IsEtag(etag)) return etag;
  const std::string modified = Find(headers, "Last-Modified");
  const std::time_t then = curl_getdate(modified.c_str(), nullptr);
  const std::time_t now = curl_getdate(Find(headers, "Date").c_str(), nullptr);
  return then >= 0 && now >= 0 && now - then >= kSettled ? modified : "";
}

// Takes a number and the text after it from the front. Empty if they are not there.
std::optional<std::uint64_t> TakeNumber(std::string_view& text, std::string_view after) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  if (text.substr(0, after.size()) != after) return std::nullopt;
  text.remove_prefix(after.size());
  return number;
}

// The size of the whole, if a Content-Range tells that the body is all of it from `first` on.
std::optional<std::uint64_t> TotalOfRest(std::string_view range, std::uint64_t first) {
  constexpr std::string_view kUnit = "bytes ";
  if (!StartsWithIgnoringCase(range, kUnit)) return std::nullopt;
  range.remove_prefix(kUnit.size());
  const auto begin = TakeNumber(range, "-");
  const auto last = begin ? TakeNumber(range, "/") : std::nullopt;
  const auto total = last ? TakeNumber(range, "") : std::nullopt;
  const bool is_rest = total && range.empty() && *begin == first && *last >= first &&
                       *last < UINT64_MAX && *last + 1 == *total;
  return is_rest ? total : std::nullopt;
}

std::optional<std::uint64_t> LengthOf(const StringMap& headers) {
  const std::string text = Find(headers, "Content-Length");
  std::string_view rest = text;
  return IsCoded(headers) ? std::nullopt : TakeNumber(rest, "");
}

}  // namespace

FileSink::FileSink(const std::string& path, Start start, Existing existing)
    : part_(std::make_unique<PartFile>(path)), start_(start), existing_(existing) {}

FileSink::~FileSink() = default;

bool FileSink::CanContinue() const { return part_->CanContinue(); }

StringMap FileSink::RequestHeaders() {
  StringMap headers;
  headers["Accept-Encoding"] = "identity";
  error_ = 0;
  const int opened = start_ == Start::kContinue ? part_->Open() : ENOENT;
  asked_for_rest_ = opened == 0;
  part_is_busy_ = opened == EWOULDBLOCK;
  size_ = continued_size_ = asked_for_rest_ ? part_->size() : 0;
  if (asked_for_rest_) {
    headers["Range"] = ToText("bytes=" + std::to_string(part_->size()) + "-");
    headers["If-Range"] = ToText(part_->note().validator);
  }
  return headers;
}

BodySink::Choice FileSink::Begin(int status, const StringMap& headers) {
  if (status == kOk) return BeginAnew(headers);
  if (!asked_for_rest_) return Choice::kLeave;
  if (status == kPartialContent && IsTheRest(headers)) {
    return Choice::kTake;
  }
  if (status != kPartialContent && status != kRangeNotSatisfiable) return Choice::kLeave;
  part_->Discard();
  return Choice::kAskAgain;
}

BodySink::Choice FileSink::BeginAnew(const StringMap& headers) {
  size_ = continued_size_ = 0;
  total_ = LengthOf(headers);
  // What may be continued later is not replaced.
  const int error = part_is_busy_ ? EWOULDBLOCK
                                  : part_->Create({FindValidator(headers), total_},
                                                  existing_ == Existing::kReplace);
  return Succeeds(error) ? Choice::kTake : Choice::kFail;
}

// Of the validators only an ETag must be repeated (RFC 9110, 15.3.7).
bool FileSink::IsTheRest(const StringMap& headers) {
  const PartNote& note = part_->note();
  total_ = TotalOfRest(Find(headers, "Content-Range"), part_->size());
  if (!total_ || IsCoded(headers) || (note.total && note.total != total_)) return false;
  if (IsEtag(note.validator)) return Find(headers, "ETag") == note.validator;
  const std::string modified = Find(headers, "Last-Modified");
  return modified.empty() || modified == note.validator;
}

bool FileSink::Write(const unsigned char* data, std::size_t size) {
  const bool good = Succeeds(part_->Append(data, size));
  size_ = part_->size();
  return good;
}

bool FileSink::End() {
  if (total_ && *total_ != size_) return Succeeds(EBADMSG);
  return Succeeds(part_->Finish(existing_ == Existing::kReplace));
}

// What an earlier download has left is still good.
bool FileSink::Succeeds(int error) {
  if (error == 0) return true;
  error_ = error;
  if (part_->is_new()) part_->Discard();
  return false;
}

}  // namespace ovrant::internet

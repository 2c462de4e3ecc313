// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/exchange.h"

#include <algorithm>
#include <atomic>
#include <new>

#include "common_stowraapi/platform/http/redirect.h"
#include "common_stowraapi/platform/http/request_headers.h"

namespace ovrant::internet {

using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

namespace {

constexpr int kFirstErrorStatus = 400;
constexpr std::size_t kLongestErrorBody = 16 << 10;

unsigned long NextNumber() {
  static std::atomic<unsigned long> last{0};
  return ++last;
}

double Seconds(HttpExchange::Clock::duration time) {
  return std::chrono::duration<double>(time).count();
}

// "no data for 0.5 seconds", in every locale.
std::string SilenceText(std::chrono::milliseconds limit) {
  constexpr long kSecond = 1000;
  std::string fraction = std::to_string(kSecond + limit.count() % kSecond).replace(0, 1, ".");
  fraction.erase(fraction.find_last_not_of("0.") + 1);
  return "no data for " + std::to_string(limit.count() / kSecond) + fraction + " seconds";
}

}  // namespace

HttpExchange::HttpExchange(HttpRequest&& request, std::shared_ptr<TransferListener> listener)
    : request_(std::move(request)),
      listener_(std::move(listener)),
      number_(NextNumber()),
      silence_text_(SilenceText(request_.inactivity_timeout)) {
  if (!listener_ || listener_->detail() == TransferDetail::kProgress) return;
  trace_.emplace(*listener_, request_, [this](TransferEvent::Kind kind) { Tell(kind); });
}

void HttpExchange::TellQueued() noexcept {
  if (trace_) Tell(TransferEvent::Kind::kQueued);
}

void HttpExchange::TellPosted(const std::string& notification) noexcept {
  if (trace_) trace_->OnPosted(notification);
}

void HttpExchange::Begin() noexcept {
  times_.queued = Seconds(Clock::now() - created_);
  began_ = true;
  Tell(TransferEvent::Kind::kStarted);
}

bool HttpExchange::BeginHop(ConnectionSockets& sockets) noexcept {
  Failure failure;
  silence_ = Clock::duration::zero();
  perform_time_ = Clock::duration::zero();
  try {
    failure = MakeHop(sockets);
  } catch (const std::bad_alloc&) {
    failure = kOutOfMemory;
  }
  if (!failure) return true;
  Conclude(failure);
  return false;
}

Failure HttpExchange::MakeHop(ConnectionSockets& sockets) {
  if (!next_) next_ = FirstHop();
  HopRequest hop = *next_;  // next_ may be made again, with other headers of the sink
  if (request_.sink) {
    if (const Failure failure = request_.sink->BeginRequest(hop.headers)) return failure;
  }
  if (trace_) trace_->Begin(hop);
  hop_.emplace(
      request_, std::move(hop), sockets, [this] { Tell(TransferEvent::Kind::kProgress); },
      trace_ ? &*trace_ : nullptr);
  return hop_->Prepare(this);
}

bool HttpExchange::EndHop(int curl_code) noexcept {
  Failure failure = kNoFailure;
  try {
    if (hop_->found_unfit_connection()) {
      next_->needs_fresh_connection = true;
      hop_->AddTimes(times_);
      hop_.reset();
      return true;
    }
    if (request_.sink && request_.sink->wants_another()) {
      AskAgain();
      return true;
    }
    failure = hop_->WhyFailed(curl_code);
    if (!failure && hop_->decoder().IsFollowed()) {
      failure = FollowRedirect();
      if (!failure) return true;
    } else if (!failure && request_.sink && request_.sink->takes()) {
      failure = request_.sink->End();
    }
  } catch (const std::bad_alloc&) {
    failure = kOutOfMemory;
  }
  Conclude(failure);
  return false;
}

void HttpExchange::EndSilent() noexcept {
  Conclude({TransferError::kSilent, silence_text_.c_str()});
}

void HttpExchange::BeforePerform() {
  TakeHostTime();
  hop_->BeforePerform(std::max(std::chrono::ceil<std::chrono::milliseconds>(silence_left()),
                               std::chrono::milliseconds(1)));
}

HttpExchange::Clock::duration HttpExchange::TakeHostTime() {
  Clock::duration time = std::exchange(host_time_, Clock::duration::zero());
  if (request_.source) time += request_.source->TakeHostTime();
  if (request_.sink) time += request_.sink->TakeHostTime();
  return time;
}

void HttpExchange::AfterPerform(bool sample) {
  if (sample && is_upload()) hop_->SampleUpload();
  if (hop_->TakeProgress()) silence_ = Clock::duration::zero();
}

HopRequest HttpExchange::FirstHop() const {
  HopRequest hop;
  hop.url = request_.url.utf8();
  hop.is_post = request_.is_upload;
  hop.body = request_.body;
  hop.source = request_.source;
  hop.headers = HeadersFor(hop.url, true);
  return hop;
}

// The headers that the host keeps for one origin go there and nowhere else. Of all others, few
// leave the origin of the first URL.
StringMap HttpExchange::HeadersFor(const std::string& url, bool is_first_origin) const {
  StringMap headers;
  AddHeaders(request_.common_headers, is_first_origin, headers);
  for (const auto& [place, its_headers] : request_.origin_headers) {
    const std::string origin = OriginOf(place.utf8());
    if (!origin.empty() && origin == OriginOf(url)) AddHeaders(its_headers, true, headers);
  }
  AddHeaders(request_.headers, is_first_origin, headers);
  return headers;
}

// Makes the same request once more, from the first URL on.
void HttpExchange::AskAgain() {
  redirects_ = 0;
  next_ = FirstHop();
  hop_->AddTimes(times_);
  hop_.reset();
}

// Makes the next hop. A failure says why that is not possible.
Failure HttpExchange::FollowRedirect() {
  if (++redirects_ > request_.redirect_limit) {
    return {TransferError::kTooManyRedirects, "too many redirects"};
  }
  const ResponseHead& head = hop_->decoder().head();
  HopRequest next;
  if (const Failure failure = ResolveRedirect(hop_->request().url, head.location(), next.url)) {
    return failure;
  }
  const bool is_first_origin = OriginOf(next.url) == OriginOf(request_.url.utf8());
  next.is_post = hop_->request().is_post && !BecomesGet(head.status());
  if (next.is_post && is_first_origin) {
    next.body = request_.body;
    next.source = request_.source;
  }
  next.headers = HeadersFor(next.url, is_first_origin);
  status_ = head.status();
  if (trace_) trace_->OnRedirect(next.url);
  hop_->AddTimes(times_);
  next_ = std::move(next);
  hop_.reset();
  return kNoFailure;
}

void HttpExchange::Conclude(const Failure& failure) noexcept {
  if (ended_) return;
  ended_ = true;
  if (hop_ && hop_->decoder().head().status() != 0) status_ = hop_->decoder().head().status();
  if (hop_) hop_->AddTimes(times_);
  times_.total = Seconds(Clock::now() - created_);
  reply_.received = !failure;
  reply_.error = failure.error;
  reply_.status = status_;
  if (began_) Tell(TransferEvent::Kind::kEnded, failure);
  if (reply_.received) {
    reply_.headers = std::move(hop_->decoder().head().fields());
    reply_.body = std::move(hop_->decoder().body());
  }
  hop_.reset();
  next_.reset();
  request_.source.reset();
  request_.sink.reset();
}

void HttpExchange::Tell(TransferEvent::Kind kind, const Failure& failure) noexcept {
  if (!listener_) return;
  try {
    TransferEvent event;
    event.kind = kind;
    event.number = number_;
    event.method = request_.is_upload ? "POST" : "GET";
    event.context = request_.context;
    event.url = request_.url;
    event.status = status_;
    event.bytes_to_send = request_.body ? request_.body->size() : 0;
    if (hop_) FillCounts(event);
    event.reason = failure.error;
    event.error = failure.text;
    event.times = times_;
    if (kind == TransferEvent::Kind::kEnded && status_ >= kFirstErrorStatus && reply_.received) {
      FillErrorReply(event);
    }
    if (trace_) FillSteps(event);
    const Clock::time_point begin = Clock::now();
    listener_->Call(event);
    host_time_ += Clock::now() - begin;
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): this event is lost
  }
}

void HttpExchange::FillSteps(TransferEvent& event) const {
  if (event.kind != TransferEvent::Kind::kEnded) {
    event.times.total = Seconds(Clock::now() - created_);
    if (hop_) hop_->AddTimes(event.times);
  }
  trace_->Fill(event);
}

void HttpExchange::FillCounts(TransferEvent& event) const {
  const ReplyDecoder& decoder = hop_->decoder();
  if (decoder.head().status() != 0) event.status = decoder.head().status();
  event.bytes_received = decoder.body_bytes();
  event.wire_bytes_received = decoder.wire_bytes();
  event.bytes_expected = decoder.head().content_length().value_or(0);
  event.bytes_sent = hop_->sent_bytes();
  event.bytes_to_send = hop_->bytes_to_send();
}

void HttpExchange::FillErrorReply(TransferEvent& event) const {
  const ReplyDecoder& decoder = hop_->decoder();
  for (const auto& [name, value] : decoder.head().fields().ToMap()) {
    if (name.compare_nocase("Content-Type") == 0) event.content_type = value;
    if (name.compare_nocase("Retry-After") == 0) event.retry_after = value;
  }
  const BodyBuffer& body = decoder.body();
  event.error_body = ovrant_ustring(reinterpret_cast<const char*>(body.data()),
                                    std::min(body.size(), kLongestErrorBody));
}

}  // namespace ovrant::internet

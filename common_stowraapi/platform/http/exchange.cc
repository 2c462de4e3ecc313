#include "common_stowraapi/platform/http/exchange.h"

#include <curl/curl.h>

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

#include "common_stowraapi/platform/http/header_text.h"

namespace ovrant::internet {

namespace {

// The most memory that is reserved for an announced length.
constexpr std::size_t kMaxReserve = std::size_t{256} << 20;

constexpr char kNoMemory[] = "out of memory";
constexpr char kHeadersBreakOff[] = "the connection closed inside the response's headers";
constexpr char kTooLarge[] = "the response's body is too large";

constexpr char kHttps[] = "https:";

constexpr int kFirstRedirect = 300;
constexpr int kLastRedirect = 399;

// libcurl's callbacks. The first or the last argument is the exchange.

HttpExchange& ExchangeAt(void* exchange) { return *static_cast<HttpExchange*>(exchange); }

std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* exchange) {
  const std::size_t length = size * count;
  return ExchangeAt(exchange).OnHeaderLine(std::string_view(data, length)) ? length : 0;
}

int OnDebug(CURL* /*easy*/, curl_infotype kind, char* data, std::size_t length, void* exchange) {
  if (kind == CURLINFO_HEADER_IN) {
    ExchangeAt(exchange).OnHeaderLineAhead(std::string_view(data, length));
  } else if (kind == CURLINFO_SSL_DATA_IN) {
    ExchangeAt(exchange).OnTlsMessage(std::string_view(data, length));
  }
  return 0;
}

std::size_t OnBodyBytes(char* data, std::size_t size, std::size_t count, void* exchange) {
  const std::size_t length = size * count;
  if (length == 0) return 0;
  return ExchangeAt(exchange).OnBody(data, length) ? length : 0;
}

int OnRequest(void* exchange, char* /*remote_ip*/, char* /*local_ip*/, int /*remote_port*/,
              int /*local_port*/) {
  return ExchangeAt(exchange).OnConnected() ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
}

int OnTransferInfo(void* exchange, curl_off_t /*to_receive*/, curl_off_t received,
                   curl_off_t /*to_send*/, curl_off_t sent) {
  ExchangeAt(exchange).OnSent(static_cast<std::size_t>(sent));
  return ExchangeAt(exchange).OnReceived(static_cast<std::size_t>(received)) ? 0 : 1;
}

}  // namespace

HttpExchange::HttpExchange(HttpRequest&& request, std::shared_ptr<TransferListener> listener)
    : request_(std::move(request)), listener_(std::move(listener)) {}

bool HttpExchange::Begin(void* easy) noexcept {
  easy_ = easy;
  last_progress_ = Clock::now();
  began_ = true;
  Tell(TransferEvent::Kind::kStarted);
  try {
    refused_ = SetExchangeOptions(request_, error_buffer_, easy, header_list_);
    SetCallbacks();
    if (refused_ == nullptr) WatchTls(StartsWithIgnoringCase(request_.url.utf8(), kHttps));
  } catch (const std::bad_alloc&) {
    refused_ = kNoMemory;
  }
  return refused_ == nullptr;
}

// These options need no memory, so they cannot fail.
void HttpExchange::SetCallbacks() {
  curl_easy_setopt(easy_, CURLOPT_HEADERFUNCTION, OnHeader);
  curl_easy_setopt(easy_, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(easy_, CURLOPT_DEBUGFUNCTION, OnDebug);
  curl_easy_setopt(easy_, CURLOPT_DEBUGDATA, this);
  curl_easy_setopt(easy_, CURLOPT_WRITEFUNCTION, OnBodyBytes);
  curl_easy_setopt(easy_, CURLOPT_WRITEDATA, this);
  curl_easy_setopt(easy_, CURLOPT_PREREQFUNCTION, OnRequest);
  curl_easy_setopt(easy_, CURLOPT_PREREQDATA, this);
  curl_easy_setopt(easy_, CURLOPT_XFERINFOFUNCTION, OnTransferInfo);
  curl_easy_setopt(easy_, CURLOPT_XFERINFODATA, this);
  if (listener_ != nullptr && request_.is_upload) WatchProgress();
}

// From now on libcurl calls OnReceived and OnSent.
void HttpExchange::WatchProgress() { curl_easy_setopt(easy_, CURLOPT_NOPROGRESS, 0L); }

// libcurl repeats a request when a kept connection closes, and gives up after a few times. A handle
// keeps that count until it is reset.
bool HttpExchange::Release() noexcept {
  LookAhead(false);
  WatchTls(false);
  const bool is_released = ReleaseFromExchange(request_, std::exchange(easy_, nullptr));
  return is_released && reply_.received && requests_ == 1;
}

void HttpExchange::End(int curl_code) noexcept {
  if (ended_) return;
  const bool received =
      refused_ == nullptr && IsReplyWhole() && (curl_code == CURLE_OK || IsAnsweredEarly(false));
  Conclude(received, received ? "" : WhyNotReceived(curl_code));
}

void HttpExchange::EndDropped() noexcept { EndFailed("dropped by the host"); }

void HttpExchange::EndFailed(const char* why) noexcept {
  if (!ended_) Conclude(false, why);
}

void HttpExchange::EndTimedOut() noexcept {
  if (ended_) return;
  const std::chrono::duration<double> seconds = request_.inactivity_timeout;
  std::snprintf(error_buffer_.data(), error_buffer_.size(), "no data for %.3g seconds",
                seconds.count());
  Conclude(false, error_buffer_.data());
}

void HttpExchange::NoteUnsent(std::size_t bytes) {
  if (bytes < unsent_bytes_) NoteProgress();
  unsent_bytes_ = bytes;
}

bool HttpExchange::IsAnsweredEarly(bool receiving_is_done) const {
  if (!is_upload() || !IsReplyWhole() || WillFollowRedirect()) return false;
  curl_off_t sent = 0;
  curl_easy_getinfo(easy_, CURLINFO_SIZE_UPLOAD_T, &sent);
  if (static_cast<std::size_t>(sent) >= request_.body->size()) return false;
  return receiving_is_done || head_.HasNoBody() || chunks_ ||
         (head_.content_length() && encoded_bytes_ == *head_.content_length());
}

bool HttpExchange::OnHeaderLine(std::string_view line) noexcept {
  try {
    TakeHeaderLine(line);
  } catch (const std::bad_alloc&) {
    Refuse(kNoMemory);
  }
  return refused_ == nullptr;
}

// Headers that begin with a continuation are dangerous (EasyReuse). libcurl does not take the line
// once the transfer is paused.
void HttpExchange::OnHeaderLineAhead(std::string_view line) noexcept {
  if (!looks_ahead_ || !BeginsWithBlank(line)) return;
  Refuse("the response's headers begin with a continuation line");
  curl_easy_pause(easy_, CURLPAUSE_RECV);
}

void HttpExchange::OnTlsMessage(std::string_view message) noexcept {
  // An alert (RFC 8446, 6) has two bytes. No other message is as short.
  constexpr char kCloseNotify = 0;
  tls_ended_ = tls_ended_ || (message.size() == 2 && message[1] == kCloseNotify);
}

bool HttpExchange::OnBody(const void* data, std::size_t length) noexcept {
  try {
    TakeBody(data, length);
  } catch (const std::bad_alloc&) {
    Refuse(kNoMemory);
  }
  return refused_ == nullptr;
}

bool HttpExchange::OnConnected() noexcept {
  NoteProgress();
  ++requests_;
  // libcurl follows a redirect even if its headers break off.
  if (head_.status() != 0 && !head_.complete()) Refuse(kHeadersBreakOff);
  awaits_response_ = true;
  const char* url = nullptr;
  curl_easy_getinfo(easy_, CURLINFO_EFFECTIVE_URL, &url);
  const bool is_https = url != nullptr && StartsWithIgnoringCase(url, kHttps);
  if (was_https_ && !is_https) Refuse("a redirect leads from https to http");
  was_https_ = is_https;
  return refused_ == nullptr;
}

void HttpExchange::OnSent(std::size_t bytes_in_all) noexcept {
  if (bytes_in_all == sent_bytes_) return;
  sent_bytes_ = bytes_in_all;
  Tell(TransferEvent::Kind::kProgress);
}

bool HttpExchange::OnReceived(std::size_t bytes) noexcept {
  if (WillFollowRedirect() && bytes > request_.body_cap) Refuse(kTooLarge);
  return refused_ == nullptr;
}

void HttpExchange::TakeHeaderLine(std::string_view line) {
  NoteProgress();
  const bool is_trailer = head_.complete() && !awaits_response_;
  if (const char* why = is_trailer ? head_.AddTrailer(line) : head_.AddLine(line)) Refuse(why);
  if (head_.at_beginning()) {
    awaits_response_ = false;
    if (WillFollowRedirect()) {
      WatchProgress();  // libcurl discards its body without OnBody
      WatchTls(true);   // it may lead to https
    }
    tls_ended_ = false;
    reply_.body.Clear();
    chunks_.reset();
    gzip_.reset();
    encoded_bytes_ = 0;
  }
  if (head_.complete() && !chunks_ && LeavesChunksHere(request_) && head_.is_chunked() &&
      !head_.HasNoBody()) {
    chunks_.emplace();
  }
  has_field_ = has_field_ || (has_line_ && !head_.fields().empty());
  has_line_ = true;
  LookAhead(!has_field_);
}

// Needed between the first status line and the first header field of a transfer.
void HttpExchange::LookAhead(bool wanted) {
  if (wanted == looks_ahead_ || HowToReuseEasyHandles() != EasyReuse::kGuarded) return;
  looks_ahead_ = wanted;
  AskToBeShown();
}

// Needed from before a TLS connection is made, for all its transfers.
void HttpExchange::WatchTls(bool wanted) {
  if (wanted == watches_tls_ || !ShowsTlsMessages()) return;
  watches_tls_ = wanted;
  AskToBeShown();
}

void HttpExchange::AskToBeShown() {
  const bool wanted = looks_ahead_ || watches_tls_;
  if (wanted == is_shown_) return;
  is_shown_ = wanted;
  curl_easy_setopt(easy_, CURLOPT_VERBOSE, wanted ? 1L : 0L);
}

void HttpExchange::TakeBody(const void* data, std::size_t length) {
  NoteProgress();
  if (encoded_bytes_ == 0 && head_.content_length() && !head_.is_gzip()) {
    reply_.body.Reserve(std::min({*head_.content_length(), request_.body_cap, kMaxReserve}));
  }
  encoded_bytes_ += length;
  if (chunks_) {
    TakeEncoded(std::string_view(static_cast<const char*>(data), length));
  } else {
    Decode(data, length);
  }
  Tell(TransferEvent::Kind::kProgress);
}

void HttpExchange::TakeEncoded(std::string_view encoded) {
  while (!encoded.empty() && refused_ == nullptr) {
    const std::string_view piece = chunks_->Next(encoded);
    if (!piece.empty()) Decode(piece.data(), piece.size());
  }
}

void HttpExchange::Decode(const void* data, std::size_t length) {
  if (!head_.is_gzip()) {
    if (length > request_.body_cap - reply_.body.size()) {
      Refuse(kTooLarge);
    } else {
      reply_.body.Append(data, length);
    }
    return;
  }
  if (!gzip_) gzip_.emplace();
  switch (gzip_->Decode(data, length, request_.body_cap, reply_.body)) {
    case GzipDecoder::Result::kOk:
      break;
    case GzipDecoder::Result::kCorrupt:
      Refuse("the response's gzip stream is corrupt");
      break;
    case GzipDecoder::Result::kTooLarge:
      Refuse(kTooLarge);
      break;
  }
}

void HttpExchange::Refuse(const char* why) {
  if (refused_ == nullptr) refused_ = why;
}

void HttpExchange::Conclude(bool received, const char* error) noexcept {
  ended_ = true;
  reply_.received = received;
  reply_.status = head_.status();
  if (received) {
    reply_.headers = std::move(head_.fields());
  } else {
    reply_.body.Clear();
  }
  if (began_) Tell(TransferEvent::Kind::kEnded, error);
  header_list_.reset();
}

bool HttpExchange::IsReplyWhole() const {
  return head_.complete() && (!chunks_ || chunks_->AtEnd()) && (!gzip_ || gzip_->AtEnd()) &&
         !IsCutOff();
}

// A body that ends with its connection is whole only if TLS has said so (RFC 9112, 9.8). Anyone on
// the path can close the connection below TLS. libcurl does not check that with every OpenSSL.
bool HttpExchange::IsCutOff() const {
  if (!watches_tls_ || !was_https_ || tls_ended_) return false;
  if (head_.HasNoBody() || head_.is_chunked() || head_.content_length()) return false;
  long version = 0;
  curl_easy_getinfo(easy_, CURLINFO_HTTP_VERSION, &version);
  return version < CURL_HTTP_VERSION_2_0;
}

bool HttpExchange::WillFollowRedirect() const {
  return request_.redirect_limit > 0 && head_.status() >= kFirstRedirect &&
         head_.status() <= kLastRedirect;
}

const char* HttpExchange::WhyNotReceived(int curl_code) const {
  if (refused_ != nullptr) return refused_;
  if (curl_code == CURLE_OUT_OF_MEMORY) return kNoMemory;
  if (curl_code != CURLE_OK) {
    return error_buffer_[0] != '\0' ? error_buffer_.data()
                                    : curl_easy_strerror(static_cast<CURLcode>(curl_code));
  }
  if (head_.complete() && IsCutOff()) return "the connection closed inside the response's body";
  return head_.complete() ? "the response's body is truncated" : kHeadersBreakOff;
}

void HttpExchange::Tell(TransferEvent::Kind kind, const char* error) noexcept {
  if (!listener_) return;
  try {
    TransferEvent event;
    event.kind = kind;
    event.url = request_.url;
    event.status = head_.status();
    event.bytes_received = reply_.body.size();
    if (!head_.is_gzip()) event.bytes_expected = head_.content_length().value_or(0);
    event.bytes_sent = sent_bytes_;
    event.bytes_to_send = request_.body ? request_.body->size() : 0;
    event.error = error;
    listener_->Call(event);
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): this event is lost
  }
}

}  // namespace ovrant::internet

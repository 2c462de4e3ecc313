// One HTTP request on the way to its reply.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_EXCHANGE_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_EXCHANGE_H_

#include <array>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "common_stowraapi/platform/http/chunk_decoder.h"
#include "common_stowraapi/platform/http/curl_handles.h"
#include "common_stowraapi/platform/http/exchange_options.h"
#include "common_stowraapi/platform/http/gzip_decoder.h"
#include "common_stowraapi/platform/http/message.h"
#include "common_stowraapi/platform/http/response_head.h"
#include "common_stowraapi/platform/http/transfer_settings.h"

namespace ovrant::internet {

// Runs one request on an easy handle and decides its outcome. TransferLoop drives the handle. The
// exchange sets the options, takes what arrives and makes the reply.
//
// libcurl accepts some replies that the exchange refuses:
//   - The connection closes inside the headers.
//   - A gzip stream is truncated.
//   - The body exceeds the cap.
//   - The encoding was not offered.
//   - A redirect leads from https to http.
//
// For one thread at a time. No exception reaches libcurl.
class HttpExchange {
 public:
  using Clock = std::chrono::steady_clock;

  // `listener` may be null. It gets the start, the progress and the end.
  HttpExchange(HttpRequest&& request, std::shared_ptr<TransferListener> listener);

  HttpExchange(const HttpExchange&) = delete;
  HttpExchange& operator=(const HttpExchange&) = delete;

  // Sets the options of `easy` and starts the clock. The handle is fresh, reset or prepared, and
  // stays the caller's. False when the request cannot be made. The caller then calls End.
  bool Begin(void* easy) noexcept;

  // Lets go of the handle after its transfer. False when the handle must be reset before another
  // exchange uses it. That is always so after a failure.
  bool Release() noexcept;

  // End the exchange by libcurl's result, as dropped, as failed or as timed out. Only the first
  // call counts.
  void End(int curl_code) noexcept;
  void EndDropped() noexcept;
  void EndFailed(const char* why) noexcept;
  void EndTimedOut() noexcept;

  bool ended() const { return ended_; }

  // True when a failure is certain, so waiting is useless.
  bool is_refused() const { return refused_ != nullptr; }

  // Requires ended().
  HttpReply TakeReply() { return std::move(reply_); }

  // Bytes have moved in either direction. The next Settle records the time.
  void NoteProgress() { has_progressed_ = true; }
  void Settle(Clock::time_point now) {
    if (has_progressed_) last_progress_ = now;
    has_progressed_ = false;
  }

  // Notes how many bytes of the upload the system still holds. A smaller number is progress.
  void NoteUnsent(std::size_t bytes);

  bool is_upload() const { return request_.is_upload && request_.body != nullptr; }

  // The time at which the exchange times out, unless more progress is settled.
  Clock::time_point deadline() const { return last_progress_ + request_.inactivity_timeout; }

  // True when the whole reply has arrived before the end of the upload. `receiving_is_done` says
  // that libcurl has read all that it will read.
  bool IsAnsweredEarly(bool receiving_is_done) const;

  // Events from libcurl. False refuses the transfer.
  bool OnHeaderLine(std::string_view line) noexcept;
  bool OnBody(const void* data, std::size_t length) noexcept;
  bool OnConnected() noexcept;
  void OnSent(std::size_t bytes_in_all) noexcept;
  bool OnReceived(std::size_t bytes_of_body) noexcept;

  // A header line before libcurl takes it, and a TLS message from the server. Called only while
  // AskToBeShown has asked for them.
  void OnHeaderLineAhead(std::string_view line) noexcept;
  void OnTlsMessage(std::string_view message) noexcept;

 private:
  void SetCallbacks();
  void WatchProgress();
  void TakeHeaderLine(std::string_view line);
  void LookAhead(bool wanted);
  void WatchTls(bool wanted);
  void AskToBeShown();
  void TakeBody(const void* data, std::size_t length);
  void TakeEncoded(std::string_view encoded);
  void Decode(const void* data, std::size_t length);
  void Refuse(const char* why);
  void Conclude(bool received, const char* error) noexcept;
  bool IsReplyWhole() const;
  bool IsCutOff() const;
  bool WillFollowRedirect() const;
  const char* WhyNotReceived(int curl_code) const;
  void Tell(TransferEvent::Kind kind, const char* error = "") noexcept;

  const HttpRequest request_;
  const std::shared_ptr<TransferListener> listener_;
  void* easy_ = nullptr;
  HeaderList header_list_;
  std::array<char, kErrorBufferSize> error_buffer_{};
  Clock::time_point last_progress_;
  bool has_progressed_ = false;

  ResponseHead head_;
  std::optional<ChunkDecoder> chunks_;  // set when libcurl leaves chunks undecoded
  std::optional<GzipDecoder> gzip_;
  bool looks_ahead_ = false;
  bool watches_tls_ = false;
  bool is_shown_ = false;   // libcurl calls CURLOPT_DEBUGFUNCTION
  bool tls_ended_ = false;  // the server has sent close_notify
  bool has_line_ = false;
  bool has_field_ = false;
  std::size_t encoded_bytes_ = 0;
  std::size_t sent_bytes_ = 0;
  std::size_t unsent_bytes_ = 0;
  const char* refused_ = nullptr;
  bool was_https_ = false;
  bool awaits_response_ = false;  // a request has gone out since the last response began
  int requests_ = 0;              // by libcurl, which follows redirects and repeats requests
  bool began_ = false;
  bool ended_ = false;
  HttpReply reply_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_EXCHANGE_H_

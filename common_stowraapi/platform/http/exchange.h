// One HTTP request on its way to a reply.

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

// Decides what the outcome of a transfer is. It sets an easy handle up for its request, takes what
// arrives while somebody else (TransferLoop) drives the handle, and turns it into a reply. Refuses
// what libcurl lets pass: a connection that closes inside the headers, a truncated gzip stream, a
// body beyond the cap, an encoding that was not offered, a redirect away from https.
//
// For one thread at a time. Nothing throws into libcurl.
class HttpExchange {
 public:
  using Clock = std::chrono::steady_clock;

  // `listener`, if any, is told of the start, progress and end.
  HttpExchange(HttpRequest&& request, std::shared_ptr<TransferListener> listener);

  HttpExchange(const HttpExchange&) = delete;
  HttpExchange& operator=(const HttpExchange&) = delete;

  // Sets every option of `easy`, which is fresh, reset or prepared and stays the caller's, and
  // starts the clock. False when the request cannot be made: End follows.
  bool Begin(void* easy) noexcept;

  // Lets go of the handle, whose transfer is over. False when it has to be reset before another
  // exchange uses it: after a failure it always is.
  bool Release() noexcept;

  // Ends the exchange with libcurl's result for it, or as dropped, failed or timed out. Only the
  // first counts.
  void End(int curl_code) noexcept;
  void EndDropped() noexcept;
  void EndFailed(const char* why) noexcept;
  void EndTimedOut() noexcept;

  bool ended() const { return ended_; }

  // Whether a failure is certain, and nothing more is to be waited for.
  bool is_refused() const { return refused_ != nullptr; }

  // REQUIRES: ended().
  HttpReply TakeReply() { return std::move(reply_); }

  // Bytes have moved in either direction since the last Settle, which says when that was.
  void NoteProgress() { has_progressed_ = true; }
  void Settle(Clock::time_point now) {
    if (has_progressed_) last_progress_ = now;
    has_progressed_ = false;
  }

  // What the system still holds of the upload: progress when it is less than before.
  void NoteUnsent(std::size_t bytes);

  bool is_upload() const { return request_.is_upload && request_.body != nullptr; }

  // When the exchange times out unless there is progress, by what has been settled.
  Clock::time_point deadline() const { return last_progress_ + request_.inactivity_timeout; }

  // Whether the whole reply is here though the upload has not ended, so that nothing more is to be
  // waited for. `receiving_is_done`: libcurl has read all that it means to read.
  bool IsAnsweredEarly(bool receiving_is_done) const;

  // What libcurl reports. False refuses the transfer.
  bool OnHeaderLine(std::string_view line) noexcept;
  bool OnBody(const void* data, std::size_t length) noexcept;
  bool OnConnected() noexcept;
  void OnSent(std::size_t bytes_in_all) noexcept;
  bool OnReceived(std::size_t bytes_of_body) noexcept;

  // A header line that libcurl is about to take, and a message of TLS from the server. Only told of
  // where one of them matters.
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
  std::optional<ChunkDecoder> chunks_;  // where libcurl is told to leave them to this
  std::optional<GzipDecoder> gzip_;
  bool looks_ahead_ = false;
  bool watches_tls_ = false;
  bool is_shown_ = false;   // libcurl shows what goes over the connection
  bool tls_ended_ = false;  // the server has said that its direction ends
  bool has_line_ = false;
  bool has_field_ = false;
  std::size_t encoded_bytes_ = 0;
  std::size_t sent_bytes_ = 0;
  std::size_t unsent_bytes_ = 0;
  const char* refused_ = nullptr;
  bool was_https_ = false;
  bool awaits_response_ = false;  // a request has been made since the last response began
  int requests_ = 0;  // made by libcurl for this one: more where it follows redirects, or repeats
  bool began_ = false;
  bool ended_ = false;
  HttpReply reply_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_EXCHANGE_H_

// SPDX-License-Identifier: MIT
// One request and its reply, as one libcurl transfer.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_HOP_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_HOP_H_

#include <array>
#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

#include "common_stowraapi/platform/http/connection_sockets.h"
#include "common_stowraapi/platform/http/curl_handles.h"
#include "common_stowraapi/platform/http/failure.h"
#include "common_stowraapi/platform/http/hop_options.h"
#include "common_stowraapi/platform/http/message.h"
#include "common_stowraapi/platform/http/reply_decoder.h"
#include "common_stowraapi/platform/http/transfer_trace.h"

namespace ovrant::internet {

// Owns an easy handle with its options and callbacks, and the decoder that gets the reply. A
// transfer has one hop, and one more for each redirect. For one thread at a time. No exception
// reaches libcurl.
class Hop {
 public:
  // `settings` and `sockets` must outlive the hop. `on_moved` is called when body bytes have moved
  // in either direction. `trace` gets the steps. It may be null. Throws std::bad_alloc when memory
  // runs out.
  Hop(const HttpRequest& settings, HopRequest&& request, ConnectionSockets& sockets,
      std::function<void()> on_moved, TransferTrace* trace = nullptr);
  ~Hop();

  Hop(const Hop&) = delete;
  Hop& operator=(const Hop&) = delete;

  // Sets the options. `owner` becomes the private pointer of the easy handle. A failure says why
  // the request cannot be made. Throws std::bad_alloc when memory runs out.
  Failure Prepare(void* owner);

  void* easy() const { return easy_.get(); }
  const HopRequest& request() const { return request_; }
  ReplyDecoder& decoder() { return decoder_; }
  const ReplyDecoder& decoder() const { return decoder_; }

  // True until the request is about to go out.
  bool is_connecting() const { return is_connecting_; }
  bool is_upload() const { return request_.body != nullptr || request_.source != nullptr; }
  std::size_t sent_bytes() const { return sent_bytes_; }

  // Bytes of the request's body, 0 when that is not known.
  std::size_t bytes_to_send() const;

  // Call it before each perform. Lets libcurl connect for `time_left` more.
  void BeforePerform(std::chrono::milliseconds time_left);

  // Whether the transfer has come a step further since the last call.
  bool TakeProgress();

  // Asks the system how much of an upload it still holds. Less than before is progress.
  void SampleUpload();

  // True when the whole reply has arrived before the end of the upload.
  bool IsAnsweredEarly() const;

  // True when the request was not sent, because bytes waited on the kept connection.
  bool found_unfit_connection() const { return found_unfit_connection_; }

  // Why there is no whole reply after libcurl's result, or kNoFailure. The text is valid until the
  // hop is destroyed.
  Failure WhyFailed(int curl_code) const;

  // Adds where the time went. Call it once, at the end.
  void AddTimes(TransferTimes& times) const;

  // Events from libcurl. False ends the transfer.
  int OnOpenSocket(int family, int type, int protocol) noexcept;
  bool OnRequest(const char* remote_ip, int local_port, int remote_port) noexcept;
  bool OnHeaderLine(std::string_view line) noexcept;
  bool OnBody(std::string_view bytes) noexcept;
  bool OnRead(char* data, std::size_t size, std::size_t& count) noexcept;
  bool OnRewind() noexcept;
  bool OnProgress(std::size_t sent_bytes_in_all) noexcept;
  void OnTlsMessage(std::string_view message) noexcept;
  void OnText(std::string_view text) noexcept;
  void OnSentHead(std::string_view bytes) noexcept;

 private:
  bool IsHttps() const;
  void SetCallbacks();
  bool IsSent() const;
  bool IsAnsweredEarly(int open_socket) const;
  int StepsOfConnecting() const;
  bool IsCutOff() const;
  TransferPhase Phase() const;

  const HttpRequest& settings_;
  const HopRequest request_;
  ConnectionSockets& sockets_;
  const std::function<void()> on_moved_;
  TransferTrace* const trace_;
  const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();

  // What libcurl uses until the handle is destroyed.
  std::array<char, kErrorBufferSize> error_buffer_{};
  HeaderList header_list_;
  ReplyDecoder decoder_;
  EasyHandle easy_;

  bool is_connecting_ = true;
  int steps_ = 0;
  int calls_in_perform_ = 0;
  int socket_ = ConnectionSockets::kNone;
  bool found_unfit_connection_ = false;
  bool watches_tls_ = false;
  bool tls_ended_ = false;  // the server has sent close_notify
  std::optional<std::chrono::steady_clock::time_point> requested_at_;
  std::optional<std::chrono::steady_clock::time_point> replied_at_;
  std::size_t sent_bytes_ = 0;
  std::size_t unsent_bytes_ = 0;
  std::size_t progress_ = 0;
  std::size_t taken_progress_ = 0;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_HOP_H_

// SPDX-License-Identifier: MIT
// The steps of one transfer, for a listener that asks for them.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_TRACE_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_TRACE_H_

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "common_stowraapi/platform/http/hop_options.h"
#include "common_stowraapi/platform/http/message.h"
#include "common_stowraapi/platform/http/transfer_settings.h"
#include "common_stowraapi/platform/transfer_types.h"

namespace ovrant::internet {

// Gathers what libcurl says about the requests of a transfer and has each step told. If memory runs
// out, steps or parts of them are lost, but no function throws. For one thread at a time.
class TransferTrace {
 public:
  // Makes an event of that kind, lets Fill complete it and calls the listener.
  using Tell = std::function<void(TransferEvent::Kind)>;

  // Throws std::bad_alloc when memory runs out.
  TransferTrace(const TransferListener& listener, const HttpRequest& request, Tell tell);

  bool wants_heads() const { return wants_heads_; }

  // A request begins.
  void Begin(const HopRequest& request) noexcept;

  // What libcurl reports in words. Only the version of TLS is taken from it.
  void OnText(std::string_view text) noexcept;

  // `tls` keeps the version for as long as the connection lives. It may be null.
  void OnConnected(const char* address, int port, bool is_reused, std::string* tls) noexcept;

  // The next bytes of the request's head on the wire.
  void OnSentHead(std::string_view bytes) noexcept;

  // A line of a response's head.
  void OnHeadLine(std::string_view line) noexcept;

  void OnRedirect(const std::string& url) noexcept;
  void OnPosted(const std::string& notification) noexcept;

  // Sets the event's members for listeners of steps, except the times.
  void Fill(TransferEvent& event) const;

 private:
  ovrant::utils::ovrant_ustring ShownUrl(const std::string& url) const;
  ovrant::utils::ovrant_ustring ShownHead(const std::string& head) const;

  const bool wants_heads_;
  const bool hides_secrets_;
  std::vector<std::string> secret_fields_;  // in lower case
  const Tell tell_;

  unsigned int request_ = 0;
  bool is_post_;
  std::string url_;
  std::string address_;
  int port_ = 0;
  bool is_reused_ = false;
  std::string tls_;
  std::string sent_head_;
  bool sent_whole_head_ = false;
  std::string reply_head_;
  bool reply_has_begun_ = false;
  std::string redirect_url_;
  std::string notification_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_TRACE_H_

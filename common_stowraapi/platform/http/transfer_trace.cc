// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/transfer_trace.h"

#if defined(__APPLE__)
#include <pthread.h>

#include <cstdint>
#elif defined(__linux__)
#include <sys/syscall.h>
#include <unistd.h>
#endif

#include <new>
#include <utility>

#include "common_stowraapi/platform/http/blanked_text.h"
#include "common_stowraapi/platform/http/header_text.h"

namespace ovrant::internet {

using ovrant::utils::ovrant_ustring;
using Kind = TransferEvent::Kind;

namespace {

constexpr std::string_view kTlsText = "SSL connection using ";

unsigned long ThreadNumber() {
#if defined(__APPLE__)
  std::uint64_t number = 0;
  pthread_threadid_np(nullptr, &number);
  return static_cast<unsigned long>(number);
#elif defined(__linux__)
  return static_cast<unsigned long>(syscall(SYS_gettid));
#else
  return 0;
#endif
}

ovrant_ustring ToText(const std::string& bytes) {
  return ovrant_ustring(bytes.data(), bytes.size());
}

bool IsEmptyLine(std::string_view line) { return TrimHeaderText(line).empty(); }

// Appends a line with a single line feed as its end.
void AppendLine(std::string_view line, std::string& head) {
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
  head.append(line).append("\n");
}

template <typename Work>
void Try(const Work& work) noexcept {
  try {
    work();
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): the step is lost
  }
}

}  // namespace

TransferTrace::TransferTrace(const TransferListener& listener, const HttpRequest& request,
                             Tell tell)
    : wants_heads_(listener.detail() == TransferDetail::kHeads),
      hides_secrets_(listener.hides_secrets()),
      tell_(std::move(tell)),
      is_post_(request.is_upload),
      url_(request.url.utf8()) {
  for (const auto& [origin, headers] : request.origin_headers) {
    for (const auto& [name, value] : headers) secret_fields_.push_back(ToLowerCase(name.utf8()));
  }
}

void TransferTrace::Begin(const HopRequest& request) noexcept {
  // Nothing was sent before a request that needs a fresh connection, so it counts once.
  if (!request.needs_fresh_connection) ++request_;
  is_post_ = request.is_post;
  Try([&] { url_ = request.url; });
  address_.clear();
  port_ = 0;
  is_reused_ = false;
  tls_.clear();
  sent_head_.clear();
  sent_whole_head_ = false;
  reply_head_.clear();
  reply_has_begun_ = false;
}

void TransferTrace::OnText(std::string_view text) noexcept {
  if (text.substr(0, kTlsText.size()) != kTlsText) return;
  text.remove_prefix(kTlsText.size());
  Try([&] { tls_ = text.substr(0, text.find_first_of(" \n")); });
}

void TransferTrace::OnConnected(const char* address, int port, bool is_reused,
                                std::string* tls) noexcept {
  Try([&] {
    if (tls != nullptr && is_reused) tls_ = *tls;
    if (tls != nullptr && !is_reused) *tls = tls_;
    address_ = address;
  });
  port_ = port;
  is_reused_ = is_reused;
  tell_(Kind::kConnected);
  if (!wants_heads_) tell_(Kind::kRequest);
}

void TransferTrace::OnSentHead(std::string_view bytes) noexcept {
  if (!wants_heads_ || sent_whole_head_) return;
  Try([&] {
    sent_head_ += bytes;
    sent_whole_head_ = sent_head_.find("\r\n\r\n") != std::string::npos;
  });
  if (sent_whole_head_) tell_(Kind::kRequest);
}

void TransferTrace::OnHeadLine(std::string_view line) noexcept {
  if (!std::exchange(reply_has_begun_, true)) tell_(Kind::kFirstByte);
  if (!IsEmptyLine(line)) {
    if (wants_heads_) Try([&] { AppendLine(line, reply_head_); });
    return;
  }
  tell_(Kind::kResponse);
  reply_head_.clear();
}

void TransferTrace::OnRedirect(const std::string& url) noexcept {
  Try([&] { redirect_url_ = url; });
  tell_(Kind::kRedirected);
  redirect_url_.clear();
}

void TransferTrace::OnPosted(const std::string& notification) noexcept {
  Try([&] { notification_ = notification; });
  tell_(Kind::kPosted);
}

void TransferTrace::Fill(TransferEvent& event) const {
  if (event.kind > Kind::kEnded && hides_secrets_) event.url = ToText(BlankUrls(event.url.utf8()));
  event.request = request_;
  event.request_method = is_post_ ? "POST" : "GET";
  event.request_url = ShownUrl(url_);
  event.address = ToText(address_);
  event.port = port_;
  event.is_reused = is_reused_;
  event.tls = ToText(tls_);
  if (event.kind == Kind::kRequest) {
    std::string lines;
    for (std::string_view rest = sent_head_; !IsEmptyLine(rest);) {
      const std::size_t end = rest.find('\n');
      AppendLine(rest.substr(0, end), lines);
      rest.remove_prefix(end + 1);
    }
    event.head = ShownHead(lines);
  } else if (event.kind == Kind::kResponse || event.kind == Kind::kEnded) {
    event.head = ShownHead(reply_head_);
  }
  event.redirect_url = ShownUrl(redirect_url_);
  event.notification = ToText(notification_);
  event.thread = ThreadNumber();
}

ovrant_ustring TransferTrace::ShownUrl(const std::string& url) const {
  return ToText(hides_secrets_ ? BlankUrls(url) : url);
}

ovrant_ustring TransferTrace::ShownHead(const std::string& head) const {
  return ToText(hides_secrets_ ? BlankHead(head, secret_fields_) : head);
}

}  // namespace ovrant::internet

// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/hop.h"

#include <curl/curl.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

#include "common_stowraapi/platform/http/header_text.h"

namespace ovrant::internet {

namespace {

// libcurl reads a proxy's answer to CONNECT byte by byte, and reports its progress each time. It
// does not stop while bytes come, so a proxy could keep all transfers waiting.
constexpr int kMaxProxyBytes = 64 << 10;

constexpr Failure kLengthHasChanged{TransferError::kBody, "the host's source has another length"};
constexpr Failure kProxyTalksTooMuch{TransferError::kTooLarge, "the proxy's answer is too long"};

// libcurl's callbacks. The pointer is the hop, or the sockets of all connections.

Hop& HopAt(void* hop) { return *static_cast<Hop*>(hop); }

curl_socket_t OnOpenSocket(void* hop, curlsocktype /*purpose*/, curl_sockaddr* address) {
  return HopAt(hop).OnOpenSocket(address->family, address->socktype, address->protocol);
}

// A connection outlives its first hop.
int OnCloseSocket(void* sockets, curl_socket_t socket) {
  static_cast<ConnectionSockets*>(sockets)->Remove(socket);
  return close(socket);
}

int OnRequest(void* hop, char* remote_ip, char* /*local_ip*/, int remote_port, int local_port) {
  return HopAt(hop).OnRequest(remote_ip, local_port, remote_port) ? CURL_PREREQFUNC_OK
                                                                  : CURL_PREREQFUNC_ABORT;
}

std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* hop) {
  return HopAt(hop).OnHeaderLine(std::string_view(data, size * count)) ? size * count : 0;
}

std::size_t OnBody(char* data, std::size_t size, std::size_t count, void* hop) {
  return HopAt(hop).OnBody(std::string_view(data, size * count)) ? size * count : 0;
}

std::size_t OnRead(char* data, std::size_t size, std::size_t count, void* hop) {
  std::size_t read = 0;
  return HopAt(hop).OnRead(data, size * count, read) ? read : CURL_READFUNC_ABORT;
}

// libcurl goes back only to the beginning.
int OnSeek(void* hop, curl_off_t offset, int origin) {
  return offset == 0 && origin == SEEK_SET && HopAt(hop).OnRewind() ? CURL_SEEKFUNC_OK
                                                                    : CURL_SEEKFUNC_FAIL;
}

int OnProgress(void* hop, curl_off_t /*to_receive*/, curl_off_t /*received*/,
               curl_off_t /*to_send*/, curl_off_t sent) {
  return HopAt(hop).OnProgress(static_cast<std::size_t>(sent)) ? 0 : 1;
}

int OnDebug(CURL* /*easy*/, curl_infotype kind, char* data, std::size_t length, void* hop) {
  const std::string_view bytes(data, length);
  if (kind == CURLINFO_SSL_DATA_IN) HopAt(hop).OnTlsMessage(bytes);
  if (kind == CURLINFO_TEXT) HopAt(hop).OnText(bytes);
  if (kind == CURLINFO_HEADER_OUT) HopAt(hop).OnSentHead(bytes);
  return 0;
}

// Microseconds since the transfer began, or 0.
curl_off_t Moment(CURL* easy, CURLINFO info) {
  curl_off_t microseconds = 0;
  curl_easy_getinfo(easy, info, &microseconds);
  return microseconds;
}

void AddSpan(curl_off_t from, curl_off_t to, double& seconds) {
  if (to > from) seconds += static_cast<double>(to - from) / 1e6;
}

}  // namespace

Hop::Hop(const HttpRequest& settings, HopRequest&& request, ConnectionSockets& sockets,
         std::function<void()> on_moved, TransferTrace* trace)
    : settings_(settings),
      request_(std::move(request)),
      sockets_(sockets),
      on_moved_(std::move(on_moved)),
      trace_(trace),
      decoder_(settings.body_cap, settings.redirect_limit > 0, settings.sink.get()),
      easy_(MakeEasyHandle()) {}

Hop::~Hop() { sockets_.Settle(this, ConnectionSockets::kNone); }

Failure Hop::Prepare(void* owner) {
  if (request_.source) {
    if (const Failure failure = request_.source->Rewind()) return failure;
  }
  const Failure failure =
      SetHopOptions(settings_, request_, error_buffer_, easy_.get(), header_list_);
  SetCallbacks();
  curl_easy_setopt(easy_.get(), CURLOPT_PRIVATE, owner);
  return failure;
}

bool Hop::IsHttps() const { return StartsWithIgnoringCase(request_.url, "https:"); }

// These options need no memory, so they cannot fail.
void Hop::SetCallbacks() {
  CURL* const easy = easy_.get();
  curl_easy_setopt(easy, CURLOPT_OPENSOCKETFUNCTION, internet::OnOpenSocket);
  curl_easy_setopt(easy, CURLOPT_OPENSOCKETDATA, this);
  curl_easy_setopt(easy, CURLOPT_CLOSESOCKETFUNCTION, OnCloseSocket);
  curl_easy_setopt(easy, CURLOPT_CLOSESOCKETDATA, &sockets_);
  curl_easy_setopt(easy, CURLOPT_PREREQFUNCTION, internet::OnRequest);
  curl_easy_setopt(easy, CURLOPT_PREREQDATA, this);
  curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, OnHeader);
  curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, internet::OnBody);
  curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
  curl_easy_setopt(easy, CURLOPT_READFUNCTION, internet::OnRead);
  curl_easy_setopt(easy, CURLOPT_READDATA, this);
  curl_easy_setopt(easy, CURLOPT_SEEKFUNCTION, OnSeek);
  curl_easy_setopt(easy, CURLOPT_SEEKDATA, this);
  curl_easy_setopt(easy, CURLOPT_XFERINFOFUNCTION, internet::OnProgress);
  curl_easy_setopt(easy, CURLOPT_XFERINFODATA, this);
  curl_easy_setopt(easy, CURLOPT_NOPROGRESS, 0L);
  watches_tls_ = IsHttps() && ShowsTlsMessages();
  const bool is_traced = trace_ != nullptr && (IsHttps() || trace_->wants_heads());
  if (!watches_tls_ && !is_traced) return;
  curl_easy_setopt(easy, CURLOPT_DEBUGFUNCTION, OnDebug);
  curl_easy_setopt(easy, CURLOPT_DEBUGDATA, this);
  curl_easy_setopt(easy, CURLOPT_VERBOSE, 1L);
}

// libcurl's own limit counts from the beginning, and time that the host has spent too.
void Hop::BeforePerform(std::chrono::milliseconds time_left) {
  if (!is_connecting_) return;
  calls_in_perform_ = 0;
  const auto limit =
      std::chrono::ceil<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin_) +
      time_left;
  curl_easy_setopt(easy_.get(), CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limit.count()));
}

bool Hop::TakeProgress() {
  if (is_connecting_) {
    const int steps = StepsOfConnecting();
    if (steps != steps_) ++progress_;
    steps_ = steps;
  }
  const std::size_t progress = progress_ + decoder_.progress();
  return progress != std::exchange(taken_progress_, progress);
}

int Hop::StepsOfConnecting() const {
  int steps = 0;
  for (const CURLINFO info :
       {CURLINFO_NAMELOOKUP_TIME_T, CURLINFO_CONNECT_TIME_T, CURLINFO_APPCONNECT_TIME_T}) {
    if (Moment(easy_.get(), info) > 0) ++steps;
  }
  return steps;
}

void Hop::SampleUpload() {
  if (socket_ == ConnectionSockets::kNone) return;
  const std::size_t unsent = CountUnsentBytes(socket_);
  if (unsent < unsent_bytes_) ++progress_;
  unsent_bytes_ = unsent;
}

std::size_t Hop::bytes_to_send() const {
  if (request_.source) return request_.source->length().value_or(0);
  return request_.body ? request_.body->size() : 0;
}

// Of a body without a length, libcurl sends more than the body. It counts as sent once it is read.
bool Hop::IsSent() const {
  if (request_.source && !request_.source->length()) return request_.source->at_end();
  return sent_bytes_ >= bytes_to_send();
}

bool Hop::IsAnsweredEarly() const { return IsAnsweredEarly(socket_); }

bool Hop::IsAnsweredEarly(int open_socket) const {
  if (!is_upload() || IsSent() || !decoder_.MayEnd()) return false;
  if (!decoder_.EndsByClose()) return true;
  return IsHttps() ? tls_ended_ : open_socket != ConnectionSockets::kNone && IsAtEnd(open_socket);
}

Failure Hop::WhyFailed(int curl_code) const {
  if (decoder_.failure()) return decoder_.failure();
  // libcurl has closed the socket of a transfer that failed.
  if (curl_code == CURLE_OK || IsAnsweredEarly(ConnectionSockets::kNone)) {
    if (IsCutOff()) return kBodyCutOff;
    if (decoder_.MayEnd()) return kNoFailure;
    return decoder_.head().complete() ? kBodyCutOff : kHeadersCutOff;
  }
  Failure failure = FailureOf(curl_code, Phase());
  if (error_buffer_[0] != '\0' && failure.error != TransferError::kTooLarge) {
    failure.text = error_buffer_.data();
  }
  return failure;
}

TransferPhase Hop::Phase() const {
  if (is_connecting_) return TransferPhase::kConnecting;
  return decoder_.head().complete() ? TransferPhase::kInsideBody : TransferPhase::kInsideHead;
}

// A body that ends with its connection is whole only if TLS has said so (RFC 9112, 9.8). Anyone on
// the path can close the connection below TLS. libcurl does not check that with every OpenSSL.
bool Hop::IsCutOff() const {
  if (!watches_tls_ || tls_ended_ || !decoder_.EndsByClose()) return false;
  long version = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_HTTP_VERSION, &version);
  return version < CURL_HTTP_VERSION_2_0;
}

void Hop::AddTimes(TransferTimes& times) const {
  CURL* const easy = easy_.get();
  const curl_off_t name = Moment(easy, CURLINFO_NAMELOOKUP_TIME_T);
  const curl_off_t connect = Moment(easy, CURLINFO_CONNECT_TIME_T);
  AddSpan(0, name, times.name);
  AddSpan(name, connect, times.connect);
  AddSpan(connect, Moment(easy, CURLINFO_APPCONNECT_TIME_T), times.tls);
  // For libcurl a reply has begun when the first byte of an upload has gone out.
  if (!requested_at_ || !replied_at_) return;
  times.first_byte += std::chrono::duration<double>(*replied_at_ - *requested_at_).count();
}

// Programs that the host starts must not inherit the connection.
int Hop::OnOpenSocket(int family, int type, int protocol) noexcept {
  is_connecting_ = true;
  socket_ = ConnectionSockets::kNone;
#if defined(SOCK_CLOEXEC)
  const int opened = socket(family, type | SOCK_CLOEXEC, protocol);
#else
  const int opened = socket(family, type, protocol);
  if (opened >= 0) fcntl(opened, F_SETFD, FD_CLOEXEC);
#endif
  if (opened < 0 || sockets_.Add(opened, this)) return opened;
  close(opened);
  return CURL_SOCKET_BAD;
}

bool Hop::OnRequest(const char* remote_ip, int local_port, int remote_port) noexcept {
  is_connecting_ = false;
  requested_at_ = std::chrono::steady_clock::now();
  ++progress_;
  socket_ = sockets_.Find(local_port, remote_ip, remote_port);
  sockets_.Settle(this, socket_);
  long new_connections = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_NUM_CONNECTS, &new_connections);
  const bool is_reused = new_connections == 0;
  found_unfit_connection_ = is_reused && sockets_.IsUnfit(socket_);
  if (found_unfit_connection_) return false;
  if (trace_ != nullptr) {
    trace_->OnConnected(remote_ip, remote_port, is_reused, sockets_.TlsOf(socket_));
  }
  return true;
}

bool Hop::OnHeaderLine(std::string_view line) noexcept {
  if (!replied_at_) replied_at_ = std::chrono::steady_clock::now();
  if (StartsWithIgnoringCase(line, "HTTP/2")) sockets_.SetFramed(socket_);
  const bool is_trailer = decoder_.head().complete();
  try {
    decoder_.AddHeaderLine(line);
  } catch (const std::bad_alloc&) {
    decoder_.Refuse(kOutOfMemory);
  }
  if (trace_ != nullptr && !is_trailer) trace_->OnHeadLine(line);
  return !decoder_.failure();
}

bool Hop::OnBody(std::string_view bytes) noexcept {
  try {
    decoder_.AddBody(bytes);
  } catch (const std::bad_alloc&) {
    decoder_.Refuse(kOutOfMemory);
  }
  if (!decoder_.IsFollowed()) on_moved_();
  return !decoder_.failure();
}

bool Hop::OnRead(char* data, std::size_t size, std::size_t& count) noexcept {
  if (request_.source) decoder_.Refuse(request_.source->Read(data, size, count));
  return !decoder_.failure();
}

bool Hop::OnRewind() noexcept {
  if (!request_.source) return true;
  // The length has gone out.
  const auto length = request_.source->length();
  decoder_.Refuse(request_.source->Rewind());
  if (request_.source->length() != length) decoder_.Refuse(kLengthHasChanged);
  return !decoder_.failure();
}

bool Hop::OnProgress(std::size_t sent_bytes_in_all) noexcept {
  if (is_connecting_ && ++calls_in_perform_ > kMaxProxyBytes) decoder_.Refuse(kProxyTalksTooMuch);
  if (sent_bytes_in_all != sent_bytes_) {
    sent_bytes_ = sent_bytes_in_all;
    ++progress_;
    on_moved_();
  }
  return !decoder_.failure();
}

void Hop::OnTlsMessage(std::string_view message) noexcept {
  // An alert (RFC 8446, 6) has two bytes. No other message is as short.
  constexpr char kCloseNotify = 0;
  tls_ended_ = tls_ended_ || (message.size() == 2 && message[1] == kCloseNotify);
}

void Hop::OnText(std::string_view text) noexcept {
  if (trace_ != nullptr) trace_->OnText(text);
}

// What is sent before is for the proxy.
void Hop::OnSentHead(std::string_view bytes) noexcept {
  if (trace_ != nullptr && !is_connecting_) trace_->OnSentHead(bytes);
}

}  // namespace ovrant::internet

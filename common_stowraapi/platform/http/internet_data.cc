// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/internet_data.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "common_stowraapi/platform/http/background_transfer.h"
#include "common_stowraapi/platform/http/background_worker.h"
#include "common_stowraapi/platform/http/message.h"
#include "common_stowraapi/platform/http/request_headers.h"
#include "common_stowraapi/platform/http/synchronous_transfers.h"
#include "common_stowraapi/platform/http/transfer_record.h"
#include "common_stowraapi/platform/http/transfer_settings.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/notification_center.h"

namespace ovrant::internet {

// What the host reads or writes itself. Both null: the bodies stay in memory.
struct HostBody {
  std::shared_ptr<BodySource> source;
  std::shared_ptr<BodySink> sink;
};

using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

namespace {

// Longer than any transfer, and small enough to add to any clock time.
constexpr float kLongestTimeout = 1e6F;

// Of the last blocking call on this thread.
thread_local TransferError last_error = TransferError::kNone;

// Exceptions from observers are swallowed, as on the transport's thread.
void PostFailure(const InternetDataDelegate& delegate) {
  try {
    CNotificationCenter::Default()->SendNotification(delegate.failed_notification(),
                                                     delegate.context());
  } catch (...) {  // NOLINT(bugprone-empty-catch): no caller expects it
  }
}

// A null name is nobody's.
std::string NameOf(const char* notification) { return notification != nullptr ? notification : ""; }

// For a blocking transfer, which the host's object outlives.
template <typename T>
std::shared_ptr<T> Borrow(T& object) {
  return std::shared_ptr<T>(std::shared_ptr<void>(), &object);
}

void AddHostBody(HostBody host_body, HttpRequest& request) {
  if (host_body.source) {
    request.body = nullptr;
    request.source = std::make_shared<SourceReader>(std::move(host_body.source));
  }
  if (host_body.sink) {
    const auto set_cap = TransferSettings::Instance().defaults()->body_cap;
    request.sink =
        std::make_shared<SinkWriter>(std::move(host_body.sink), set_cap > 0 ? set_cap : SIZE_MAX);
  }
}

std::chrono::milliseconds ToTimeout(float wanted, float otherwise) {
  const float seconds = wanted > 0 && std::isfinite(wanted) ? wanted : otherwise;
  return std::chrono::milliseconds(
      static_cast<long>(std::ceil(std::fmin(seconds, kLongestTimeout) * 1000)));
}

}  // namespace

InternetData::~InternetData() {
  if (transfer_) DropTransfer();
  std::free(received_data_);
}

bool InternetData::Download() { return Perform(url_, false, nullptr); }

bool InternetData::DownloadWithDelegate(InternetDataDelegate* delegate, void* /*user_data*/) {
  return StartInBackground(delegate, false);
}

bool InternetData::UploadWithDelegate(InternetDataDelegate* delegate, void* /*user_data*/) {
  return StartInBackground(delegate, true);
}

bool InternetData::UploadFrom(BodySource& source) {
  return Perform(url_, true, nullptr, {Borrow(source), nullptr});
}

bool InternetData::DownloadTo(BodySink& sink) {
  return Perform(url_, false, nullptr, {nullptr, Borrow(sink)});
}

bool InternetData::UploadFromWithDelegate(std::shared_ptr<BodySource> source,
                                          InternetDataDelegate* delegate, void* /*user_data*/) {
  return source && StartInBackground(delegate, true, {std::move(source), nullptr});
}

bool InternetData::DownloadToWithDelegate(std::shared_ptr<BodySink> sink,
                                          InternetDataDelegate* delegate, void* /*user_data*/) {
  return sink && StartInBackground(delegate, false, {nullptr, std::move(sink)});
}

void InternetData::set_send_data(const unsigned char* data, unsigned long length) {
  const bool has_data = data != nullptr && length > 0;
  try {
    send_data_ = has_data ? std::make_shared<RequestBody>(data, length) : nullptr;
  } catch (const std::length_error&) {
    throw std::bad_alloc();
  }
}

void InternetData::SetValueForHTTPSendHeaders(ovrant_ustring name, ovrant_ustring value) {
  SetHeader(name, value, send_headers_);
}

bool InternetData::SendAndRead(ovrant_ustring url, unsigned char** data, unsigned long* data_length,
                               int* status, StringMap* send_headers, bool /*flag1*/, bool /*flag2*/,
                               bool /*flag3*/, ovrant_ustring /*text1*/, ovrant_ustring /*text2*/,
                               StringMap* received_headers) {
  Perform(url, true, send_headers);
  if (received_headers != nullptr) CopyReceivedHeaders(*received_headers);
  if (data != nullptr) *data = received_data_;
  if (data_length != nullptr) *data_length = received_data_length_;
  if (status != nullptr) *status = status_code_;
  return responded_;
}

const StringMap& InternetData::received_headers() const {
  if (transfer_ && !transfer_->unread_headers.empty()) {
    received_headers_ = transfer_->unread_headers.ToMap();
    transfer_->unread_headers = HeaderFields();
  }
  return received_headers_;
}

void InternetData::SetDefaults(const TransferDefaults& defaults) {
  TransferSettings::Instance().SetDefaults(defaults);
}

void InternetData::SetTransferListener(std::function<void(const TransferEvent&)> listener) {
  SetTransferListener(std::move(listener), TransferDetail::kProgress);
}

void InternetData::SetTransferListener(std::function<void(const TransferEvent&)> listener,
                                       TransferDetail detail, TransferSecrets secrets) {
  TransferSettings::Instance().listener().Replace(
      listener ? std::make_shared<TransferListener>(std::move(listener), detail, secrets)
               : nullptr);
}

TransferError InternetData::LastError() { return last_error; }

void InternetData::SetCompletionExecutor(
    std::function<void(std::function<void()> completion)> executor) {
  TransferSettings::Instance().executor().Replace(std::move(executor));
}

HttpRequest InternetData::MakeRequest(const ovrant_ustring& url, bool is_upload,
                                      const StringMap* send_headers) const {
  const auto defaults = TransferSettings::Instance().defaults();
  HttpRequest request;
  request.url = url;
  request.common_headers = defaults->extra_request_headers;
  request.origin_headers = defaults->origin_request_headers;
  request.headers = send_headers_;
  if (send_headers != nullptr) AddHeaders(*send_headers, true, request.headers);
  request.is_upload = is_upload;
  if (is_upload) request.body = send_data_;
  request.inactivity_timeout = ToTimeout(defaults->inactivity_timeout, inactivity_timeout_);
  if (defaults->body_cap > 0) request.body_cap = defaults->body_cap;
  if (redirect_limit_ >= 0) request.redirect_limit = redirect_limit_;
  if (!defaults->ca_file.empty()) request.ca_file = defaults->ca_file.utf8();
  if (!defaults->proxy.empty()) request.proxy = defaults->proxy.utf8();
  if (!defaults->user_agent.empty()) request.user_agent = defaults->user_agent.utf8();
  return request;
}

bool InternetData::Perform(const ovrant_ustring& url, bool is_upload,
                           const StringMap* send_headers) {
  return Perform(url, is_upload, send_headers, HostBody());
}

bool InternetData::Perform(const ovrant_ustring& url, bool is_upload, const StringMap* send_headers,
                           const HostBody& host_body) {
  try {
    HttpRequest request = MakeRequest(url, is_upload, send_headers);
    AddHostBody(host_body, request);
    Reset();
    transfer_ = std::make_shared<TransferRecord>();
    HttpReply reply = PerformSynchronously(std::move(request));
    last_error = reply.error;
    Publish(std::move(reply));
  } catch (const std::bad_alloc&) {
    last_error = TransferError::kOutOfMemory;
    Reset();
  }
  return responded_;
}

bool InternetData::StartInBackground(InternetDataDelegate* delegate, bool is_upload) {
  return StartInBackground(delegate, is_upload, HostBody());
}

bool InternetData::StartInBackground(InternetDataDelegate* delegate, bool is_upload,
                                     HostBody host_body) {
  if (delegate == nullptr) return false;
  try {
    HttpRequest request = MakeRequest(url_, is_upload, nullptr);
    AddHostBody(std::move(host_body), request);
    request.context = delegate->context();
    auto transfer = std::make_shared<BackgroundTransfer>(
        std::move(request), TransferSettings::Instance().listener().Current(),
        Announcement{delegate->context(), NameOf(delegate->returned_notification()),
                     NameOf(delegate->failed_notification()), delegate->gate_},
        [this](HttpReply reply) { Publish(std::move(reply)); });
    Reset();
    transfer_ = transfer;
    return BackgroundWorker::Submit(std::move(transfer));
  } catch (const std::bad_alloc&) {
    host_body = HostBody();
    Reset();
    PostFailure(*delegate);
    return true;
  }
}

// If memory runs out, the transfer fails.
void InternetData::CopyReceivedHeaders(StringMap& copy) {
  try {
    copy = received_headers();
  } catch (const std::bad_alloc&) {
    copy.clear();
    HttpReply failure;
    failure.status = status_code_;
    last_error = TransferError::kOutOfMemory;
    Reset();
    Publish(std::move(failure));
  }
}

void InternetData::Reset() {
  if (transfer_) DropTransfer();
  Publish(HttpReply());
  started_ = true;
}

void InternetData::DropTransfer() {
  const unsigned long number = transfer_->Abandon();
  if (number != 0) BackgroundWorker::Withdraw(number);
  transfer_.reset();
}

void InternetData::Publish(HttpReply reply) {
  std::free(received_data_);
  received_data_length_ = reply.body.size();
  received_data_ = reply.body.Release();
  status_code_ = reply.status;
  received_headers_.clear();
  if (transfer_) transfer_->unread_headers = std::move(reply.headers);
  responded_ = reply.received;
}

}  // namespace ovrant::internet

// SPDX-License-Identifier: MIT
#include "common_stowraapi/request/web_service_request_base.h"

#include <cstring>
#include <optional>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/request/delivery_check.h"
#include "common_stowraapi/succeeds.h"

namespace ovrant::webservices {

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::utils::ovrant_ustring;

namespace {

constexpr int kHttpOk = 200;

bool ParseBody(WebServiceRequestBase& request, const InternetData& transport) {
  return Succeeds([&] {
    return request.ParseResponse(
        ovrant_ustring(reinterpret_cast<const char*>(transport.received_data()),
                       transport.received_data_length()));
  });
}

bool Download(const ovrant_ustring& url, std::optional<InternetData>& transport) {
  return Succeeds(
      [&] { return transport.emplace(url).Download() && transport->status_code() == kHttpOk; });
}

}  // namespace

// The constructor of the concrete class sets the numbers and names.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
WebServiceRequestBase::WebServiceRequestBase() = default;

WebServiceRequestBase::~WebServiceRequestBase() {
  DeliveryCheck::ExpectOutside(this, "a web service request was destroyed");
  CleanUpRequest();
  RemoveNotifications();
}

void WebServiceRequestBase::OnNotification(const char* name, void* /*payload*/) {
  const DeliveryCheck check(this);
  // A host must not delete this object in a hook. In case it does, nothing follows a hook.
  if (std::strcmp(name, returned_notification_) == 0) {
    if (!internet_data_) return;
    if (internet_data_->status_code() == kHttpOk && ParseBody(*this, *internet_data_)) {
      OnAsyncResponseSuccess();
    } else {
      OnAsyncResponseFail();
    }
  } else if (std::strcmp(name, failed_notification_) == 0) {
    OnAsyncResponseFail();
  }
}

void WebServiceRequestBase::Init(const ovrant_ustring& url, void* context) {
  url_ = url;
  context_ = context;
}

bool WebServiceRequestBase::ParseResponse(const ovrant_ustring& /*body*/) { return false; }

void WebServiceRequestBase::OnSyncResponseSuccess() {}
void WebServiceRequestBase::OnSyncResponseFail() {}
void WebServiceRequestBase::OnAsyncResponseSuccess() {}
void WebServiceRequestBase::OnAsyncResponseFail() {}

bool WebServiceRequestBase::SynchronousRequest() {
  std::optional<InternetData> transport;
  if (!url_.empty() && Download(url_, transport) && ParseBody(*this, *transport)) {
    // The hook still sees the transport.
    OnSyncResponseSuccess();
    return true;
  }
  transport.reset();
  OnSyncResponseFail();
  return false;
}

void WebServiceRequestBase::AsynchronousRequest() {
  DeliveryCheck::ExpectOutside(this, "AsynchronousRequest was called");
  if (url_.empty()) return;
  CleanUpRequest();
  const bool is_ready = Succeeds([this] {
    internet_data_ = std::make_unique<InternetData>(url_);
    delegate_ = std::make_unique<InternetDataDelegate>(
        context_, returned_message_, returned_notification_, failed_message_, failed_notification_);
    return true;
  });
  if (is_ready) {
    // Not inside Succeeds: a transfer that fails at once runs a hook here, which may throw.
    internet_data_->DownloadWithDelegate(delegate_.get(), nullptr);
  } else {
    CleanUpRequest();
    OnAsyncResponseFail();
  }
}

void WebServiceRequestBase::AddNotifications() {
  CNotificationCenter* center = CNotificationCenter::Default();
  center->AddObserver(returned_notification_, this);
  center->AddObserver(failed_notification_, this);
}

void WebServiceRequestBase::RemoveNotifications() {
  CNotificationCenter::Default()->RemoveObserver(this);
}

void WebServiceRequestBase::CleanUpRequest() {
  DeliveryCheck::ExpectOutside(this, "CleanUpRequest was called");
  delegate_.reset();
  internet_data_.reset();
}

}  // namespace ovrant::webservices

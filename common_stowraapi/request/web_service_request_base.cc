#include "common_stowraapi/request/web_service_request_base.h"

#include <cstring>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/notification_center.h"

namespace ovrant::webservices {

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::utils::ovrant_ustring;

namespace {

constexpr int kHttpOk = 200;

bool ParseBody(WebServiceRequestBase& request, const InternetData& transport) {
  return request.ParseResponse(ovrant_ustring(
      reinterpret_cast<const char*>(transport.received_data()), transport.received_data_length()));
}

// The success hook still sees the transport; it is gone when this returns.
bool DownloadAndParse(WebServiceRequestBase& request, const ovrant_ustring& url) {
  InternetData transport(url);
  if (!transport.Download() || transport.status_code() != kHttpOk) return false;
  if (!ParseBody(request, transport)) return false;
  request.OnSyncResponseSuccess();
  return true;
}

}  // namespace

// The numbers and names stay unset until the concrete class's constructor sets them.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
WebServiceRequestBase::WebServiceRequestBase() = default;

WebServiceRequestBase::~WebServiceRequestBase() {
  CleanUpRequest();
  RemoveNotifications();
}

void WebServiceRequestBase::OnNotification(const char* name, void* /*payload*/) {
  // A hook may delete this object: nothing follows one.
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
  if (!url_.empty() && DownloadAndParse(*this, url_)) return true;
  OnSyncResponseFail();
  return false;
}

void WebServiceRequestBase::AsynchronousRequest() {
  if (url_.empty()) return;
  CleanUpRequest();
  internet_data_ = std::make_unique<InternetData>(url_);
  delegate_ = std::make_unique<InternetDataDelegate>(
      context_, returned_message_, returned_notification_, failed_message_, failed_notification_);
  internet_data_->DownloadWithDelegate(delegate_.get(), nullptr);
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
  delegate_.reset();
  internet_data_.reset();
}

}  // namespace ovrant::webservices

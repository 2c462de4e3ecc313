// SPDX-License-Identifier: MIT
#include "common_stowraapi/services/extension_store_status.h"

#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/request/delivery_check.h"
#include "common_stowraapi/services/item_map.h"
#include "common_stowraapi/succeeds.h"

const char* const kExtensionStoreStatusRequestReturnedNotification =
    "ExtensionStoreStatusRequestReturned";
const char* const kExtensionStoreStatusRequestFailedNotification =
    "ExtensionStoreStatusRequestFailed";
const char* const kExtensionStoreAsynchStatusSucceededNotification =
    "ExtensionStoreAsyncStatusSucceeded";
const char* const kExtensionStoreAsynchStatusFailedNotification = "ExtensionStoreAsyncStatusFailed";

namespace ovrant::extensionstoreapi {

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

bool ExtensionStoreStatus::status_sync_completed_ = false;

namespace {

// An inline variable is exported only where its address is used.
[[gnu::used]] const unsigned int* const kExportedNumbers[] = {
    &kExtensionStoreStatusRequestReturnedMessage, &kExtensionStoreStatusRequestFailedMessage};

constexpr unsigned int kHttpOk = 200;
constexpr char kContentTypeHeader[] = "Content-Type";
constexpr char kJsonContentType[] = "application/json";

void Post(const char* name) { CNotificationCenter::Default()->SendNotification(name, nullptr); }

void SetSendData(InternetData& transport, const std::string& body) {
  transport.set_send_data(reinterpret_cast<const unsigned char*>(body.data()), body.size());
}

// Copies the body and records the success.
ovrant_ustring TakeResponse(const InternetData& transport) {
  ovrant_ustring text(reinterpret_cast<const char*>(transport.received_data()),
                      transport.received_data_length());
  __atomic_store_n(&ExtensionStoreStatus::status_sync_completed_, true, __ATOMIC_RELAXED);
  return text;
}

}  // namespace

ExtensionStoreStatus::ExtensionStoreStatus() { AddNotifications(); }

ExtensionStoreStatus::~ExtensionStoreStatus() {
  DeliveryCheck::ExpectOutside(this, "an extension store status was destroyed");
  // First of all, so that no notification reaches an object that is half gone. Once more at the
  // end, because the order of destruction is part of the contract with the platform.
  RemoveNotifications();
  delegate_.reset();
  internet_data_.reset();
  RemoveNotifications();
}

void ExtensionStoreStatus::Init(const ovrant_ustring& url, void* context,
                                const ovrant_ustring& request_body) {
  ovrant_ustring new_url(url);
  ovrant_ustring new_body(request_body);
  url_ = std::move(new_url);
  context_ = context;
  request_body_ = std::move(new_body);
  response_.clear();
}

bool ExtensionStoreStatus::SynchronousStatus() {
  return Succeeds([this] {
    InternetData transport(url_);
    SetSendData(transport, request_body_.utf8());
    StringMap headers;
    headers[kContentTypeHeader] = kJsonContentType;
    int status = 0;
    if (!transport.SendAndRead(url_, nullptr, nullptr, &status, &headers, false, false, true,
                               ovrant_ustring(), ovrant_ustring(), nullptr) ||
        status != static_cast<int>(kHttpOk)) {
      return false;
    }
    response_ = TakeResponse(transport);
    return true;
  });
}

void ExtensionStoreStatus::AsynchronousStatus() {
  DeliveryCheck::ExpectOutside(this, "AsynchronousStatus was called");
  const bool is_ready = Succeeds([this] {
    internet_data_.reset();
    internet_data_ = std::make_unique<InternetData>(url_);
    delegate_.reset();
    delegate_ = std::make_unique<InternetDataDelegate>(
        context_, kExtensionStoreStatusRequestReturnedMessage,
        kExtensionStoreStatusRequestReturnedNotification, kExtensionStoreStatusRequestFailedMessage,
        kExtensionStoreStatusRequestFailedNotification);
    internet_data_->SetValueForHTTPSendHeaders(kContentTypeHeader, kJsonContentType);
    SetSendData(*internet_data_, request_body_.utf8());
    return true;
  });
  if (is_ready) {
    // Not inside Succeeds: a transfer that fails at once posts here, and an observer may throw.
    internet_data_->UploadWithDelegate(delegate_.get(), nullptr);
  } else {
    delegate_.reset();
    internet_data_.reset();
    Post(kExtensionStoreAsynchStatusFailedNotification);
  }
}

void ExtensionStoreStatus::OnNotification(const char* name, void* /*payload*/) {
  const DeliveryCheck check(this);
  // A host must not delete this object in an observer. In case it does, nothing follows a post.
  if (std::strcmp(name, kExtensionStoreStatusRequestReturnedNotification) == 0) {
    if (internet_data_) {
      OnReceivedStatusResponse(static_cast<unsigned int>(internet_data_->status_code()));
    }
  } else if (std::strcmp(name, kExtensionStoreStatusRequestFailedNotification) == 0) {
    Post(kExtensionStoreAsynchStatusFailedNotification);
  }
}

void ExtensionStoreStatus::OnReceivedStatusResponse(unsigned int status) {
  if (status != kHttpOk) {
    Post(kExtensionStoreAsynchStatusFailedNotification);
    return;
  }
  if (!internet_data_) return;
  const bool kept = Succeeds([this] {
    response_ = TakeResponse(*internet_data_);
    return true;
  });
  Post(kept ? kExtensionStoreAsynchStatusSucceededNotification
            : kExtensionStoreAsynchStatusFailedNotification);
}

std::map<ovrant_ustring, ExtensionStoreItem> ExtensionStoreStatus::GetItemMapFromResponse() {
  return ReadItemMap(response_);
}

void ExtensionStoreStatus::AddNotifications() {
  CNotificationCenter* center = CNotificationCenter::Default();
  center->AddObserver(kExtensionStoreStatusRequestReturnedNotification, this);
  try {
    center->AddObserver(kExtensionStoreStatusRequestFailedNotification, this);
  } catch (const std::bad_alloc&) {
    // The constructor calls this, and no destructor follows it if it throws.
    RemoveNotifications();
    throw;
  }
}

void ExtensionStoreStatus::RemoveNotifications() {
  CNotificationCenter::Default()->RemoveObserver(this);
}

}  // namespace ovrant::extensionstoreapi

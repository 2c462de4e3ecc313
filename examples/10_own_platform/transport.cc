// SPDX-License-Identifier: MIT
// The host's transport: QNetworkAccessManager. All of it runs on the main thread, so a background
// transfer ends in the main loop.

#include <QCoreApplication>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "platform_names.h"

using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

namespace ovrant {

// Lives as long as its delegate.
class DeliveryGate {};

}  // namespace ovrant

namespace ovrant::internet {

class RequestBody {
 public:
  QByteArray bytes;
};

struct HttpReply {
  QNetworkReply* source;
};

// A transfer. Deleting it drops the transfer, also in the notification that ends it.
class TransferRecord {
 public:
  explicit TransferRecord(QNetworkReply* started) : reply(started) {}

  struct End {
    void operator()(QNetworkReply* ending) const {
      ending->abort();
      ending->deleteLater();
    }
  };

  const std::unique_ptr<QNetworkReply, End> reply;
  const QObject context;  // its end disconnects the reply
};

namespace {

QByteArray BytesOf(const ovrant_ustring& text) { return QByteArray::fromStdString(text.utf8()); }

QNetworkReply* Send(const ovrant_ustring& url, const StringMap& headers, const QByteArray* body) {
  static auto* const manager = new QNetworkAccessManager(QCoreApplication::instance());
  QNetworkRequest request(QUrl::fromEncoded(BytesOf(url)));
  for (const auto& [name, value] : headers) request.setRawHeader(BytesOf(name), BytesOf(value));
  return body == nullptr ? manager->get(request) : manager->post(request, *body);
}

// A response that arrived whole counts, whatever its status.
bool IsWhole(const QNetworkReply& reply) {
  return reply.error() == QNetworkReply::NoError ||
         reply.error() >= QNetworkReply::ContentAccessDenied;
}

}  // namespace

InternetDataDelegate::InternetDataDelegate(void* context, unsigned int returned_message,
                                           const char* returned_notification,
                                           unsigned int failed_message,
                                           const char* failed_notification)
    : context_(context),
      returned_message_(returned_message),
      returned_notification_(returned_notification),
      failed_message_(failed_message),
      failed_notification_(failed_notification),
      gate_(std::make_shared<DeliveryGate>()) {}

InternetDataDelegate::~InternetDataDelegate() = default;

InternetData::~InternetData() { Reset(); }

void InternetData::Reset() {
  transfer_.reset();
  delete[] received_data_;
  received_data_ = nullptr;
  received_data_length_ = 0;
  status_code_ = 0;
  responded_ = false;
}

void InternetData::Publish(HttpReply reply) {
  status_code_ = reply.source->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  responded_ = status_code_ != 0 && IsWhole(*reply.source);
  const QByteArray body = reply.source->readAll();
  if (!responded_ || body.isEmpty()) return;
  received_data_length_ = static_cast<unsigned long>(body.size());
  received_data_ = new unsigned char[received_data_length_];
  std::copy(body.begin(), body.end(), received_data_);
}

// The nested loop also ends other transfers.
bool InternetData::Perform(const ovrant_ustring& url, bool is_upload,
                           const StringMap* send_headers) {
  Reset();
  StringMap headers = send_headers_;
  if (send_headers != nullptr) {
    for (const auto& [name, value] : *send_headers) headers[name] = value;
  }
  const QByteArray body = send_data_ ? send_data_->bytes : QByteArray();
  transfer_ = std::make_shared<TransferRecord>(Send(url, headers, is_upload ? &body : nullptr));
  QEventLoop loop;
  QObject::connect(transfer_->reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
  loop.exec();
  Publish({transfer_->reply.get()});
  return responded_;
}

bool InternetData::StartInBackground(InternetDataDelegate* delegate, bool is_upload) {
  if (delegate == nullptr) return false;
  Reset();
  const QByteArray body = send_data_ ? send_data_->bytes : QByteArray();
  transfer_ =
      std::make_shared<TransferRecord>(Send(url_, send_headers_, is_upload ? &body : nullptr));
  QObject::connect(
      transfer_->reply.get(), &QNetworkReply::finished, &transfer_->context,
      [this, gate = std::weak_ptr<DeliveryGate>(delegate->gate_),
       returned = std::string(delegate->returned_notification()),
       failed = std::string(delegate->failed_notification()), context = delegate->context()] {
        if (gate.expired()) return;
        Publish({transfer_->reply.get()});
        // Transport and delegate may be deleted from here on.
        CNotificationCenter::Default()->SendNotification(
            responded_ ? returned.c_str() : failed.c_str(), context);
      });
  return true;
}

bool InternetData::Download() { return Perform(url_, false, nullptr); }

bool InternetData::DownloadWithDelegate(InternetDataDelegate* delegate, void*) {
  return StartInBackground(delegate, false);
}

bool InternetData::UploadWithDelegate(InternetDataDelegate* delegate, void*) {
  return StartInBackground(delegate, true);
}

void InternetData::set_send_data(const unsigned char* data, unsigned long length) {
  auto body = std::make_shared<RequestBody>();
  body->bytes = QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(length));
  send_data_ = std::move(body);
}

void InternetData::SetValueForHTTPSendHeaders(ovrant_ustring name, ovrant_ustring value) {
  send_headers_[name] = value;
}

bool InternetData::SendAndRead(ovrant_ustring url, unsigned char** data, unsigned long* data_length,
                               int* status, StringMap* send_headers, bool, bool, bool,
                               ovrant_ustring, ovrant_ustring, StringMap*) {
  const bool responded = Perform(url, true, send_headers);
  if (data != nullptr) *data = received_data_;
  if (data_length != nullptr) *data_length = received_data_length_;
  if (status != nullptr) *status = status_code_;
  return responded;
}

}  // namespace ovrant::internet

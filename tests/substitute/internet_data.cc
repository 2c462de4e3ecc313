// SPDX-License-Identifier: MIT
// A transport without a network: the test's script says how each transfer ends. It uses none of the
// functions that the class keeps to itself.

#include "common_stowraapi/platform/internet_data.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/notification_center.h"
#include "tests/substitute/effects.h"
#include "tests/substitute/transport.h"
#include "tests/substitute/transport_watch.h"

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;
using stowra_substitute::AddressText;
using stowra_substitute::Outcome;
using stowra_substitute::Record;

namespace {

// A background transfer that has not ended and whose transport and delegate exist.
struct Transfer {
  std::string url;
  InternetData* transport;
  const InternetDataDelegate* delegate;
};

int transports_deleted = 0;
int delegates = 0;
bool starts_in_background = true;
bool fails_at_once = false;
std::deque<Outcome> script;
std::vector<Transfer> running;

Outcome NextOutcome() {
  if (script.empty()) {
    Record("no outcome is scripted");
    return stowra_substitute::NoReply();
  }
  Outcome next = std::move(script.front());
  script.pop_front();
  return next;
}

template <typename Predicate>
void DropTransfers(Predicate predicate) {
  running.erase(std::remove_if(running.begin(), running.end(), predicate), running.end());
}

bool Start(const std::string& url, InternetData* transport, const InternetDataDelegate* delegate) {
  if (delegate == nullptr) Record("no delegate is given");
  if (delegate == nullptr || !starts_in_background) return false;
  if (fails_at_once) {
    CNotificationCenter::Default()->SendNotification(delegate->failed_notification(),
                                                     delegate->context());
    return true;
  }
  running.push_back({url, transport, delegate});
  return true;
}

const char* BoolText(bool value) { return value ? "true" : "false"; }

std::string MapText(const StringMap* map) {
  if (map == nullptr) return "null";
  std::string text = "{";
  for (const auto& [name, value] : *map) {
    text += (text.size() > 1 ? ", " : "") + name.utf8() + ": " + value.utf8();
  }
  return text + "}";
}

}  // namespace

namespace ovrant::internet {

// Writes the response that a transport holds.
class InternetDataTestPeer {
 public:
  static void Publish(const Outcome& outcome, InternetData& transport) {
    const std::string& body = outcome.body;
    std::free(transport.received_data_);
    transport.received_data_ = nullptr;
    transport.received_data_length_ = outcome.stated_length.value_or(body.size());
    transport.status_code_ = outcome.status;
    if (body.empty()) return;
    transport.received_data_ = static_cast<unsigned char*>(std::malloc(body.size()));
    if (transport.received_data_ == nullptr) throw std::bad_alloc();
    std::memcpy(transport.received_data_, body.data(), body.size());
  }
};

InternetDataDelegate::InternetDataDelegate(void* context, unsigned int returned_message,
                                           const char* returned_notification,
                                           unsigned int failed_message,
                                           const char* failed_notification)
    : context_(context),
      returned_message_(returned_message),
      returned_notification_(returned_notification),
      failed_message_(failed_message),
      failed_notification_(failed_notification) {
  ++delegates;
  Record("delegate constructed: context " + AddressText(context) + ", " +
         std::to_string(returned_message) + " " + returned_notification + ", " +
         std::to_string(failed_message) + " " + failed_notification);
}

InternetDataDelegate::~InternetDataDelegate() {
  DropTransfers([this](const Transfer& transfer) { return transfer.delegate == this; });
  --delegates;
  Record("delegate deleted");
}

InternetData::~InternetData() {
  DropTransfers([this](const Transfer& transfer) { return transfer.transport == this; });
  ++transports_deleted;
  Record(url_.utf8() + ": deleted");
  std::free(received_data_);
}

bool InternetData::Download() {
  Record(url_.utf8() + ": Download");
  const Outcome outcome = NextOutcome();
  InternetDataTestPeer::Publish(outcome, *this);
  return outcome.received;
}

bool InternetData::DownloadWithDelegate(InternetDataDelegate* delegate, void* user_data) {
  Record(url_.utf8() + ": DownloadWithDelegate, user data " + AddressText(user_data));
  return Start(url_.utf8(), this, delegate);
}

bool InternetData::UploadWithDelegate(InternetDataDelegate* delegate, void* user_data) {
  Record(url_.utf8() + ": UploadWithDelegate, user data " + AddressText(user_data));
  return Start(url_.utf8(), this, delegate);
}

void InternetData::set_send_data(const unsigned char* data, unsigned long length) {
  const std::string bytes(data, data + length);
  Record(url_.utf8() + ": set_send_data " + std::to_string(length) + " bytes: " + bytes);
}

void InternetData::SetValueForHTTPSendHeaders(ovrant_ustring name, ovrant_ustring value) {
  Record(url_.utf8() + ": header " + name.utf8() + ": " + value.utf8());
}

bool InternetData::SendAndRead(ovrant_ustring url, unsigned char** data, unsigned long* data_length,
                               int* status, StringMap* send_headers, bool flag1, bool flag2,
                               bool flag3, ovrant_ustring text1, ovrant_ustring text2,
                               StringMap* received_headers) {
  Record(url_.utf8() + ": SendAndRead " + url.utf8() + ", data " + AddressText(data) + ", length " +
         AddressText(data_length) + ", status " +
         (status == nullptr ? "null" : std::to_string(*status)) + ", headers " +
         MapText(send_headers) + ", " + BoolText(flag1) + ", " + BoolText(flag2) + ", " +
         BoolText(flag3) + ", '" + text1.utf8() + "', '" + text2.utf8() + "', received headers " +
         MapText(received_headers));
  const Outcome outcome = NextOutcome();
  InternetDataTestPeer::Publish(outcome, *this);
  if (status != nullptr) *status = outcome.stored_status.value_or(outcome.status);
  return outcome.received;
}

}  // namespace ovrant::internet

namespace stowra_substitute {

void ScriptTransfer(Outcome outcome) { script.push_back(std::move(outcome)); }

int CountScripted() { return static_cast<int>(script.size()); }

void SetStartsInBackground(bool starts) { starts_in_background = starts; }

void SetFailsAtOnce(bool fails) { fails_at_once = fails; }

// Touches neither transport nor delegate after the post, in which they may be deleted.
bool EndTransfer(const std::string& url, const Outcome& outcome) {
  const auto found = std::find_if(running.begin(), running.end(),
                                  [&url](const Transfer& transfer) { return transfer.url == url; });
  if (found == running.end()) return false;
  const Transfer transfer = *found;
  running.erase(found);
  ovrant::internet::InternetDataTestPeer::Publish(outcome, *transfer.transport);
  const InternetDataDelegate& delegate = *transfer.delegate;
  CNotificationCenter::Default()->SendNotification(
      outcome.received ? delegate.returned_notification() : delegate.failed_notification(),
      delegate.context());
  return true;
}

int CountTransports() { return CountConstructedTransports() - transports_deleted; }

int CountDelegates() { return delegates; }

}  // namespace stowra_substitute

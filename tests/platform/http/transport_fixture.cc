// SPDX-License-Identifier: MIT
#include "tests/platform/http/transport_fixture.h"

#include <utility>

#include "tests/platform/http/handlers.h"

namespace stowra_test {
namespace {

// A transfer of this fails without a connection.
constexpr char kCatchUpUrl[] = "catchup:";

void ResetSettings() {
  InternetData::SetDefaults(TransferDefaults());
  InternetData::SetTransferListener(nullptr);
  InternetData::SetCompletionExecutor(nullptr);
}

}  // namespace

std::string BodyOf(const InternetData& transport) {
  if (transport.received_data() == nullptr) {
    EXPECT_EQ(transport.received_data_length(), 0U);
    return "";
  }
  return std::string(reinterpret_cast<const char*>(transport.received_data()),
                     transport.received_data_length());
}

std::string HeaderOf(const InternetData& transport, const char* name) {
  const auto found = transport.received_headers().find(name);
  return found == transport.received_headers().end() ? "(none)" : found->second.utf8();
}

std::string Redirect(int status, const std::string& location) {
  return Response(status, "moved", "Location: " + location + "\r\n");
}

RawServer::Handler RedirectTo(const std::string& location, int status) {
  return [location, status](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.target == "/from" ? Redirect(status, location)
                                               : Response(200, "hello"));
  };
}

RawServer::Handler HelloAfter(Event& event) { return AnswerAfter(event, Response(200, "hello")); }

RawRequest LastRequest(const RawServer& server) {
  const auto requests = server.requests();
  EXPECT_FALSE(requests.empty());
  return requests.empty() ? RawRequest() : requests.back();
}

void SetSendData(std::string_view data, InternetData& transport) {
  transport.set_send_data(reinterpret_cast<const unsigned char*>(data.data()), data.size());
}

bool Post(const std::string& url, InternetData& transport, StringMap* send_headers) {
  return transport.SendAndRead(Text(url), nullptr, nullptr, nullptr, send_headers, false, false,
                               true, "", "", nullptr);
}

void ExpectFailureState(const InternetData& transport, int status) {
  EXPECT_EQ(transport.status_code(), status);
  EXPECT_EQ(transport.received_data(), nullptr);
  EXPECT_EQ(transport.received_data_length(), 0U);
  EXPECT_TRUE(transport.received_headers().empty());
}

std::unique_ptr<InternetDataDelegate> MakeDelegate(void* context, const char* returned,
                                                   const char* failed) {
  return std::make_unique<InternetDataDelegate>(context, kReturnedMessage, returned, kFailedMessage,
                                                failed);
}

Background::Background(const std::string& url, std::function<void()> on_notification)
    : recorder({kReturned, kFailed}, std::move(on_notification)),
      delegate(MakeDelegate()),
      transport(std::make_unique<InternetData>(Text(url))) {}

bool Background::Start() { return transport->DownloadWithDelegate(delegate.get(), nullptr); }

bool Background::StartUpload(std::string_view data) {
  SetSendData(data, *transport);
  return transport->UploadWithDelegate(delegate.get(), nullptr);
}

std::string Background::WaitForEnd() {
  if (!recorder.WaitFor(1)) return "(nothing)";
  return recorder.entries().back().name;
}

std::size_t Background::CountPosts() {
  LetWorkerCatchUp();
  return recorder.entries().size();
}

void LetWorkerCatchUp() {
  constexpr char kCaughtUp[] = "TransportTestCaughtUp";
  NotificationRecorder recorder({kCaughtUp});
  const auto delegate = MakeDelegate(nullptr, kCaughtUp, kCaughtUp);
  InternetData transport{Text(kCatchUpUrl)};
  ASSERT_TRUE(transport.DownloadWithDelegate(delegate.get(), nullptr));
  ASSERT_TRUE(recorder.WaitFor(1));
}

void EventRecorder::Listen(TransferDetail detail, TransferSecrets secrets) {
  const auto record = [this](const TransferEvent& event) {
    if (event.url == Text(kCatchUpUrl)) return;
    const std::lock_guard<std::mutex> lock(mutex_);
    events_.push_back({event, std::this_thread::get_id()});
  };
  if (detail == TransferDetail::kProgress) {
    InternetData::SetTransferListener(record);  // which hears no steps unasked
  } else {
    InternetData::SetTransferListener(record, detail, secrets);
  }
}

std::vector<EventRecorder::Told> EventRecorder::events() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return events_;
}

std::vector<EventRecorder::Told> EventRecorder::TakeEvents() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(events_, {});
}

TransportTest::TransportTest() { ResetSettings(); }

TransportTest::~TransportTest() { ResetSettings(); }

void TransportTest::SetInactivityTimeout(float seconds) {
  TransferDefaults defaults;
  defaults.inactivity_timeout = seconds;
  InternetData::SetDefaults(defaults);
}

void TransportTest::SetBodyCap(unsigned long bytes) {
  TransferDefaults defaults;
  defaults.body_cap = bytes;
  InternetData::SetDefaults(defaults);
}

TrustingTest::TrustingTest() {
  authority_.WriteTo(folder_.path() / "authority.pem");
  Trust("authority.pem");
}

void TrustingTest::Trust(const char* file) {
  defaults_.ca_file = (folder_.path() / file).c_str();
  InternetData::SetDefaults(defaults_);
}

}  // namespace stowra_test

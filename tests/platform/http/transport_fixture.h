// SPDX-License-Identifier: MIT
// Helpers for the tests of the transport.

#ifndef TESTS_PLATFORM_HTTP_TRANSPORT_FIXTURE_H_
#define TESTS_PLATFORM_HTTP_TRANSPORT_FIXTURE_H_

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/transfer_types.h"
#include "common_stowraapi/platform/ustring.h"
#include "tests/faults/ask.h"
#include "tests/support/certificates.h"
#include "tests/support/event.h"
#include "tests/support/notification_recorder.h"
#include "tests/support/raw_server.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text.h"

namespace stowra_test {

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::internet::TransferDefaults;
using ovrant::internet::TransferDetail;
using ovrant::internet::TransferEvent;
using ovrant::internet::TransferSecrets;
using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

inline constexpr char kReturned[] = "TransportTestReturned";
inline constexpr char kFailed[] = "TransportTestFailed";
inline constexpr unsigned int kReturnedMessage = 1;
inline constexpr unsigned int kFailedMessage = 2;

// Larger than any buffer on the way, and still quick to allocate.
inline constexpr std::size_t kLargeBody = std::size_t{32} << 20;

// Download `url`. A failure must leave neither body nor headers.
inline Answer Fetch(const std::string& url) { return Ask(Way::kDownload, url, ""); }
inline Answer FetchInBackground(const std::string& url) {
  return Ask(Way::kDownloadWithDelegate, url, "");
}
inline Answer NotReceived(int status = 0) { return {false, status, ""}; }

// The response that the transport holds.
std::string BodyOf(const InternetData& transport);
std::string HeaderOf(const InternetData& transport, const char* name);

// A redirect with the body "moved".
std::string Redirect(int status, const std::string& location);

// Redirects "/from" to `location` and answers any other request with "hello".
RawServer::Handler RedirectTo(const std::string& location, int status = 302);

// Answers with "hello" after the event.
RawServer::Handler HelloAfter(Event& event);

// The last request of the server, or an empty one.
RawRequest LastRequest(const RawServer& server);

void SetSendData(std::string_view data, InternetData& transport);

// Makes a POST of the send data to `url` with SendAndRead.
bool Post(const std::string& url, InternetData& transport, StringMap* send_headers = nullptr);

// Expects the state after a failure: no body, no headers and `status`.
void ExpectFailureState(const InternetData& transport, int status = 0);

std::unique_ptr<InternetDataDelegate> MakeDelegate(void* context = nullptr,
                                                   const char* returned = kReturned,
                                                   const char* failed = kFailed);

// A transport, its delegate and a recorder of the posts.
struct Background {
  explicit Background(const std::string& url, std::function<void()> on_notification = nullptr);

  // Start a GET, or a POST of `data`. WaitForEnd gives the posted name, or waits for kPatience in
  // vain. The last two do both.
  bool Start();
  bool StartUpload(std::string_view data);
  std::string WaitForEnd();
  std::string Run() { return Start() ? WaitForEnd() : "(not started)"; }
  std::string Upload(std::string_view data) {
    return StartUpload(data) ? WaitForEnd() : "(not started)";
  }

  // How many posts have come when the worker has caught up (LetWorkerCatchUp).
  std::size_t CountPosts();

  NotificationRecorder recorder;
  std::unique_ptr<InternetDataDelegate> delegate;
  std::unique_ptr<InternetData> transport;
};

// Waits until the worker has handled all transfers that ended or were dropped before.
void LetWorkerCatchUp();

// Records the events of all transfers, from Listen on. At its end nothing listens any more.
class EventRecorder {
 public:
  struct Told : TransferEvent {
    std::thread::id told_on;
  };

  ~EventRecorder() { InternetData::SetTransferListener(nullptr); }

  void Listen(TransferDetail detail = TransferDetail::kProgress,
              TransferSecrets secrets = TransferSecrets::kBlanked);

  // All events so far. TakeEvents forgets them.
  std::vector<Told> events() const;
  std::vector<Told> TakeEvents();

 private:
  mutable std::mutex mutex_;
  std::vector<Told> events_;
};

// Resets the settings of the process before and after each test.
class TransportTest : public ::testing::Test {
 protected:
  TransportTest();
  ~TransportTest() override;

  TransportTest(const TransportTest&) = delete;
  TransportTest& operator=(const TransportTest&) = delete;

  static void SetInactivityTimeout(float seconds);
  static void SetBodyCap(unsigned long bytes);
};

// Transfers trust one authority. It has issued a certificate for this machine.
class TrustingTest : public TransportTest {
 protected:
  TrustingTest();

  // Makes the transfers trust only the authorities in this file of the folder.
  void Trust(const char* file);

  TransferDefaults defaults_;
  const TemporaryFolder folder_;
  const CertificateAuthority authority_{"trusted"};
  const Certificate certificate_ = authority_.Issue("DNS:localhost,IP:127.0.0.1");
  const RawServer::Options tls_{&certificate_};
};

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_HTTP_TRANSPORT_FIXTURE_H_

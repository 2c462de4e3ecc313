// What the tests of the transport share.

#ifndef TESTS_PLATFORM_HTTP_TRANSPORT_FIXTURE_H_
#define TESTS_PLATFORM_HTTP_TRANSPORT_FIXTURE_H_

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/transfer_types.h"
#include "common_stowraapi/platform/ustring.h"
#include "tests/support/event.h"
#include "tests/support/notification_recorder.h"
#include "tests/support/raw_server.h"

namespace stowra_test {

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::internet::TransferDefaults;
using ovrant::internet::TransferEvent;
using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

inline constexpr char kReturned[] = "TransportTestReturned";
inline constexpr char kFailed[] = "TransportTestFailed";
inline constexpr unsigned int kReturnedMessage = 1;
inline constexpr unsigned int kFailedMessage = 2;

// A file that an allocation of this size or a body of it is quick to make, and no buffer on the way
// can hold.
inline constexpr std::size_t kLargeBody = std::size_t{32} << 20;

ovrant_ustring Text(std::string_view utf8);

// The response as it stands in the transport.
std::string BodyOf(const InternetData& transport);
std::string HeaderOf(const InternetData& transport, const char* name);

// The last request that the server has got; an empty one where there is none.
RawRequest LastRequest(const RawServer& server);

void SetSendData(std::string_view data, InternetData& transport);

// Expects what a failure leaves: no body, no headers and `status`.
void ExpectFailureState(const InternetData& transport, int status = 0);

std::unique_ptr<InternetDataDelegate> MakeDelegate(void* context = nullptr,
                                                   const char* returned = kReturned,
                                                   const char* failed = kFailed);

// A transport, its delegate, and what the delegate posts.
struct Background {
  explicit Background(const std::string& url, std::function<void()> on_notification = nullptr);

  // GET; what has been posted when it has ended, or within kPatience.
  bool Start();
  std::string WaitForEnd();

  NotificationRecorder recorder;
  std::unique_ptr<InternetDataDelegate> delegate;
  std::unique_ptr<InternetData> transport;
};

// Waits until the thread of the background transfers has done all that it had to do for transfers
// which ended, or were given up, before.
void LetWorkerCatchUp();

// Puts the settings of the process back to the initial ones before and after each test.
class TransportTest : public ::testing::Test {
 protected:
  TransportTest();
  ~TransportTest() override;

  TransportTest(const TransportTest&) = delete;
  TransportTest& operator=(const TransportTest&) = delete;

  static void SetInactivityTimeout(float seconds);
  static void SetBodyCap(unsigned long bytes);
};

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_HTTP_TRANSPORT_FIXTURE_H_

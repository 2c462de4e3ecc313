// SPDX-License-Identifier: MIT
// Header lines that are very long, beside other transfers.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

constexpr std::size_t kLong = 250'000;

class LongHeaderTest : public TransportTest {
 protected:
  // Sends the reply in every way, while other transfers run.
  static void ExpectReason(TransferError reason, const std::string& reply) {
    Event answer;
    const RawServer others(HelloAfter(answer));
    std::vector<std::unique_ptr<Background>> running;
    for (std::size_t i = 0; i < 5; ++i) {
      running.push_back(std::make_unique<Background>(others.Url()));
      ASSERT_TRUE(running.back()->Start());
    }
    ASSERT_TRUE(others.WaitForRequests(running.size()));
    const RawServer server(Always(reply));
    for (const Way way : kAllWays) {
      EXPECT_EQ(ReasonOf(way, server.Url()), reason) << NameOf(way);
    }
    for (const auto& each : running) EXPECT_EQ(each->transport->status_code(), 0);
    NotificationRecorder recorder({kReturned, kFailed});
    answer.Set();
    EXPECT_TRUE(recorder.WaitFor(running.size()));
    for (const auto& each : running) EXPECT_EQ(BodyOf(*each->transport), "hello");
  }
};

TEST_F(LongHeaderTest, LineIsTooLarge) {
  const std::string x(kLong, 'x');
  for (const std::string& reply :
       {Response(200, "hello", "X-Long: " + x + "\r\n"), Redirect(302, "/" + x),
        "HTTP/1.1 200 " + x + "\r\nContent-Length: 0\r\n\r\n"}) {
    SCOPED_TRACE(reply.substr(0, 50));
    ExpectReason(TransferError::kTooLarge, reply);
  }
}

TEST_F(LongHeaderTest, FoldedFieldIsReceived) {
  std::string field = "X-Long: 1\r\n";
  while (field.size() < kLong) field += " " + std::string(1000, 'x') + "\r\n";
  ExpectReason(TransferError::kNone, Response(200, "hello", field));
}

}  // namespace
}  // namespace stowra_test

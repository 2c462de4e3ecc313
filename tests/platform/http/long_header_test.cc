// SPDX-License-Identifier: MIT
// Header lines that are very long.

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
  // Sends each reply, and lets it fail as too large or succeed.
  static void ExpectTooLargeOrReceived(const std::string& reply) {
    Event answer;
    const RawServer others(HelloAfter(answer));
    std::vector<std::unique_ptr<Background>> running;
    for (std::size_t i = 0; i < 5; ++i) {
      running.push_back(std::make_unique<Background>(others.Url()));
      ASSERT_TRUE(running.back()->Start());
    }
    ASSERT_TRUE(others.WaitForRequests(running.size()));
    const RawServer server([&reply](const RawRequest& request, RawConnection& connection) {
      connection.Write(request.target == "/" ? reply : Response(200, "hello"));
    });
    for (const Way way : kAllWays) {
      const TransferError reason = ReasonAmongOthers(way, server.Url());
      EXPECT_TRUE(reason == TransferError::kNone || reason == TransferError::kTooLarge)
          << NameOf(way) << ": " << static_cast<int>(reason);
    }
    for (const auto& each : running) EXPECT_EQ(each->transport->status_code(), 0);
    answer.Set();
    for (const auto& each : running) {
      EXPECT_TRUE(each->recorder.WaitFor(running.size()));
      EXPECT_EQ(BodyOf(*each->transport), "hello");
    }
  }

 private:
  static TransferError ReasonAmongOthers(Way way, const std::string& url) {
    const EndListener listener;
    if (IsBlocking(way)) {
      Ask(way, url, "data");
      return listener.last().reason;
    }
    static constexpr char kOwn[] = "LongHeaderTestOwn";
    NotificationRecorder recorder({kOwn});
    const auto delegate = MakeDelegate(nullptr, kOwn, kOwn);
    InternetData transport(Text(url));
    EXPECT_TRUE(way == Way::kDownloadWithDelegate
                    ? transport.DownloadWithDelegate(delegate.get(), nullptr)
                    : transport.UploadWithDelegate(delegate.get(), nullptr));
    EXPECT_TRUE(recorder.WaitFor(1));
    return listener.last().reason;
  }
};

TEST_F(LongHeaderTest, FieldIsTooLargeOrReceived) {
  ExpectTooLargeOrReceived(Response(200, "hello", "X-Long: " + std::string(kLong, 'x') + "\r\n"));
}

TEST_F(LongHeaderTest, LocationIsTooLargeOrFollowed) {
  ExpectTooLargeOrReceived(
      Response(302, "moved", "Location: /" + std::string(kLong, 'x') + "\r\n"));
}

TEST_F(LongHeaderTest, StatusLineIsTooLargeOrReceived) {
  ExpectTooLargeOrReceived("HTTP/1.1 200 " + std::string(kLong, 'x') +
                           "\r\nContent-Length: 0\r\n\r\n");
}

TEST_F(LongHeaderTest, FoldedFieldIsTooLargeOrReceived) {
  std::string field = "X-Long: 1\r\n";
  while (field.size() < kLong) field += " " + std::string(1000, 'x') + "\r\n";
  ExpectTooLargeOrReceived(Response(200, "hello", field));
}

}  // namespace
}  // namespace stowra_test

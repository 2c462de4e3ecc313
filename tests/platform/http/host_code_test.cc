// SPDX-License-Identifier: MIT
// Time that the host's own code takes. It is no silence of the server.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

using std::chrono::milliseconds;

constexpr float kTimeout = 1.5F;
constexpr milliseconds kLongerThanTheTimeout(2500);

// Takes as long as a slow host function.
void BeSlow(milliseconds time = kLongerThanTheTimeout) { Event().Wait(time); }

class SlowListenerTest : public TransportTest, public ::testing::WithParamInterface<Way> {
 protected:
  SlowListenerTest() { SetInactivityTimeout(kTimeout); }

  // The listener is slow at the first event of that kind.
  static void BeSlowAt(TransferEvent::Kind kind) {
    InternetData::SetTransferListener([kind, slow = false](const TransferEvent& event) mutable {
      if (event.kind == kind && !std::exchange(slow, true)) BeSlow();
    });
  }
};

INSTANTIATE_TEST_SUITE_P(Ways, SlowListenerTest, ::testing::ValuesIn(kAllWays),
                         [](const auto& test) { return NameOf(test.param); });

TEST_P(SlowListenerTest, AtTheStartIsNoSilence) {
  const RawServer server(Always(Response(200, "hello")));
  BeSlowAt(TransferEvent::Kind::kStarted);
  EXPECT_EQ(Ask(GetParam(), server.Url(), "data"), Received(200, "hello"));
}

TEST_P(SlowListenerTest, DuringTheBodyIsNoSilence) {
  const std::string body(300'000, 'x');
  const RawServer server(Always(Response(200, body)));
  BeSlowAt(TransferEvent::Kind::kProgress);
  EXPECT_EQ(Ask(GetParam(), server.Url(), "data"), Received(200, body));
}

TEST_P(SlowListenerTest, BeforeARedirectIsNoSilence) {
  const RawServer other(Always(Response(200, "hello")));
  const RawServer server(Always(Response(302, "", "Location: " + other.Url() + "\r\n")));
  BeSlowAt(TransferEvent::Kind::kStarted);
  EXPECT_EQ(Ask(GetParam(), server.Url(), "data"), Received(200, "hello"));
}

class BlockedWorkerTest : public TransportTest {
 protected:
  BlockedWorkerTest() { SetInactivityTimeout(kTimeout); }

  static constexpr std::size_t kOthers = 20;

  // Starts kOthers transfers.
  void StartOthers(const std::string& url) {
    for (std::size_t i = 0; i < kOthers; ++i) ASSERT_TRUE(others_.emplace_back(url).Start());
  }

  void ExpectOthersReceived() {
    for (Background& each : others_) {
      EXPECT_TRUE(each.recorder.WaitFor(kOthers));
      EXPECT_EQ(each.transport->status_code(), 200);
      EXPECT_EQ(BodyOf(*each.transport), "hello");
    }
  }

  // Fails at once. Its post runs `work` on the worker.
  void RunOnWorker(std::function<void()> work) {
    static constexpr char kRun[] = "HostCodeTestRun";
    recorder_.emplace(std::initializer_list<const char*>{kRun}, std::move(work));
    delegate_ = MakeDelegate(nullptr, kRun, kRun);
    ASSERT_TRUE(impossible_.DownloadWithDelegate(delegate_.get(), nullptr));
  }

  std::deque<Background> others_;

 private:
  std::optional<NotificationRecorder> recorder_;
  std::unique_ptr<InternetDataDelegate> delegate_;
  InternetData impossible_{Text("none:")};
};

// The replies of the others lie in their sockets while an observer blocks the worker.
TEST_F(BlockedWorkerTest, RepliesThatHaveArrivedAreReceived) {
  Event answer;
  std::atomic<std::size_t> answered{0};
  Event all_answered;
  const RawServer server([&](const RawRequest&, RawConnection& connection) {
    EXPECT_TRUE(answer.Wait());
    connection.Write(Response(200, "hello"));
    if (++answered == kOthers) all_answered.Set();
  });
  StartOthers(server.Url());
  ASSERT_TRUE(server.WaitForRequests(kOthers));
  RunOnWorker([&] {
    answer.Set();
    EXPECT_TRUE(all_answered.Wait());
    BeSlow();
  });
  ExpectOthersReceived();
}

// Each start is slow, so the first connections wait for the last start.
TEST_F(BlockedWorkerTest, ConnectionsThatAreMadeMeanwhileAreUsed) {
  const RawServer server(Always(Response(200, "hello")));
  InternetData::SetTransferListener([](const TransferEvent& event) {
    if (event.kind == TransferEvent::Kind::kStarted) BeSlow(milliseconds(150));
  });
  // All starts happen in one turn, because a delivery holds the worker until then.
  Event go_on;
  Event entered;
  RunOnWorker([&] {
    entered.Set();
    EXPECT_TRUE(go_on.Wait());
  });
  ASSERT_TRUE(entered.Wait());
  StartOthers(server.Url());
  go_on.Set();
  ExpectOthersReceived();
}

}  // namespace
}  // namespace stowra_test

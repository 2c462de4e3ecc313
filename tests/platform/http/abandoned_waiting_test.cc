// SPDX-License-Identifier: MIT
// Transfers that are dropped while they wait for their turn.

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/http/background_transfer.h"
#include "common_stowraapi/platform/http/background_worker.h"
#include "common_stowraapi/platform/memory_sink.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/event.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

using ovrant::DeliveryGate;
using ovrant::internet::Announcement;
using ovrant::internet::BackgroundTransfer;
using ovrant::internet::BackgroundWorker;
using ovrant::internet::HttpReply;
using ovrant::internet::HttpRequest;
using ovrant::internet::MemorySink;

// Sets the event when it is destroyed.
struct Farewell {
  explicit Farewell(Event& said) : event(said) {}
  ~Farewell() { event.Set(); }

  Farewell(const Farewell&) = delete;
  Farewell& operator=(const Farewell&) = delete;

  Event& event;
};

class AbandonedWaitingTest : public TransportTest {
 protected:
  // All later transfers wait.
  void SetUp() override {
    for (std::size_t i = 0; i < BackgroundWorker::kMaxActive; ++i) {
      stalled_.push_back(std::make_unique<Background>(server_.Url()));
      ASSERT_TRUE(stalled_.back()->Start());
    }
    ASSERT_TRUE(server_.WaitForRequests(BackgroundWorker::kMaxActive));
  }

 private:
  const RawServer server_{Silence()};
  std::vector<std::unique_ptr<Background>> stalled_;
};

TEST_F(AbandonedWaitingTest, FreesTransfersThatNeverGetTheirTurn) {
  Event freed;
  auto transfer = std::make_shared<BackgroundTransfer>(
      HttpRequest(), nullptr,
      Announcement{nullptr, "returned", "failed", std::make_shared<DeliveryGate>()},
      [farewell = std::make_shared<Farewell>(freed)](const HttpReply&) {});
  BackgroundTransfer& waiting = *transfer;
  ASSERT_TRUE(BackgroundWorker::Submit(std::move(transfer)));
  EXPECT_FALSE(freed.Wait(std::chrono::milliseconds(0)));
  BackgroundWorker::Withdraw(waiting.Abandon());
  EXPECT_TRUE(freed.Wait(std::chrono::milliseconds(0)));
}

TEST_F(AbandonedWaitingTest, DeletedTransportFreesItsTransferAtOnce) {
  const auto sink = std::make_shared<MemorySink>();
  Background waiting("none:");
  ASSERT_TRUE(waiting.transport->DownloadToWithDelegate(sink, waiting.delegate.get(), nullptr));
  EXPECT_GT(sink.use_count(), 1);
  waiting.transport.reset();
  EXPECT_EQ(sink.use_count(), 1);
}

}  // namespace
}  // namespace stowra_test

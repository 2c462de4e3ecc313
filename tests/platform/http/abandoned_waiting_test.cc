// SPDX-License-Identifier: MIT
// Transfers that are dropped while they wait for their turn.

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/http/background_transfer.h"
#include "common_stowraapi/platform/http/background_worker.h"
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

// Sets the event when it is destroyed.
struct Farewell {
  explicit Farewell(Event& said) : event(said) {}
  ~Farewell() { event.Set(); }

  Farewell(const Farewell&) = delete;
  Farewell& operator=(const Farewell&) = delete;

  Event& event;
};

class AbandonedWaitingTest : public TransportTest {};

TEST_F(AbandonedWaitingTest, FreesTransfersThatNeverGetTheirTurn) {
  const RawServer server(Silence());
  std::vector<std::unique_ptr<Background>> stalled;
  for (std::size_t i = 0; i < BackgroundWorker::kMaxActive; ++i) {
    stalled.push_back(std::make_unique<Background>(server.Url()));
    ASSERT_TRUE(stalled.back()->Start());
  }
  ASSERT_TRUE(server.WaitForRequests(BackgroundWorker::kMaxActive));

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

}  // namespace
}  // namespace stowra_test

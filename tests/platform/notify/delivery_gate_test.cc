#include "common_stowraapi/platform/notify/delivery_gate.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "common_stowraapi/platform/notify/delivery_scope.h"
#include "tests/support/event.h"

namespace stowra_test {
namespace {

using ovrant::DeliveryGate;
using ovrant::DeliveryScope;

constexpr std::chrono::milliseconds kTooEarly(100);

TEST(DeliveryGate, IsOpenUntilItIsClosed) {
  DeliveryGate gate;
  EXPECT_FALSE(gate.IsClosed());
  EXPECT_TRUE(gate.Enter());
  gate.Leave();
  gate.Close();
  EXPECT_TRUE(gate.IsClosed());
  EXPECT_FALSE(gate.Enter());
  gate.Close();
  EXPECT_FALSE(gate.Enter());
}

TEST(DeliveryGate, RunsTheFunctionOnlyWhenOpen) {
  DeliveryGate gate;
  int runs = 0;
  EXPECT_TRUE(gate.Enter([&runs] { ++runs; }));
  gate.Leave();
  gate.Close();
  EXPECT_FALSE(gate.Enter([&runs] { ++runs; }));
  EXPECT_EQ(runs, 1);
}

TEST(DeliveryGate, CloseWaitsForAllCalls) {
  DeliveryGate gate;
  ASSERT_TRUE(gate.Enter());
  ASSERT_TRUE(gate.Enter());
  Event closed;
  std::thread closer([&] {
    gate.Close();
    closed.Set();
  });
  EXPECT_FALSE(closed.Wait(kTooEarly));
  gate.Leave();
  EXPECT_FALSE(closed.Wait(kTooEarly));
  EXPECT_TRUE(gate.IsClosed());
  EXPECT_FALSE(gate.Enter());
  gate.Leave();
  EXPECT_TRUE(closed.Wait());
  closer.join();
}

TEST(DeliveryGate, CloseInADeliveryStillWaitsForTheFunction) {
  DeliveryGate gate;
  Event entered;
  Event closed;
  std::atomic<bool> returned_too_early{false};
  std::thread enterer([&] {
    gate.Enter([&] {
      entered.Set();
      returned_too_early = closed.Wait(kTooEarly);
    });
  });
  ASSERT_TRUE(entered.Wait());
  {
    const DeliveryScope scope;
    gate.Close();
    closed.Set();
  }
  enterer.join();
  EXPECT_FALSE(returned_too_early);
}

TEST(DeliveryGate, CloseInsideADeliveryDoesNotWaitForCalls) {
  DeliveryGate gate;
  ASSERT_TRUE(gate.Enter());
  {
    const DeliveryScope scope;
    gate.Close();
  }
  EXPECT_TRUE(gate.IsClosed());
  gate.Leave();
}

TEST(DeliveryScope, CoversItsThreadAndNests) {
  EXPECT_FALSE(DeliveryScope::IsInside());
  {
    const DeliveryScope outer;
    {
      const DeliveryScope inner;
      EXPECT_TRUE(DeliveryScope::IsInside());
    }
    EXPECT_TRUE(DeliveryScope::IsInside());
    bool inside_elsewhere = true;
    std::thread([&inside_elsewhere] { inside_elsewhere = DeliveryScope::IsInside(); }).join();
    EXPECT_FALSE(inside_elsewhere);
  }
  EXPECT_FALSE(DeliveryScope::IsInside());
}

TEST(DeliveryGate, NoCallIsRunningAfterClose) {
  for (int round = 0; round < 200; ++round) {
    DeliveryGate gate;
    // Not atomic, because the gate orders all accesses.
    int value = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
      threads.emplace_back([&gate, &value] {
        while (gate.Enter([&value] { ++value; })) gate.Leave();
      });
    }
    gate.Close();
    value = -1;
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(value, -1);
  }
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/notify/delivery_gate.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <new>
#include <thread>
#include <vector>

#include "common_stowraapi/platform/notify/delivery.h"
#include "tests/support/event.h"

namespace stowra_test {
namespace {

using ovrant::DeliveryGate;
using ovrant::NoWaitScope;

constexpr std::chrono::milliseconds kTooEarly(100);

bool CanEnter(DeliveryGate& gate) { return DeliveryGate::Call(gate).has_entered(); }

bool HasEnded(const std::future<void>& call, std::chrono::milliseconds limit) {
  return call.wait_for(limit) == std::future_status::ready;
}

// Stays inside a gate, on a second thread, until LetGo.
class Visitor {
 public:
  explicit Visitor(DeliveryGate& gate)
      : thread_([this, &gate] {
          const DeliveryGate::Call call(gate);
          has_entered_ = call.has_entered();
          tried_.Set();
          if (!let_go_.Wait()) ADD_FAILURE() << "LetGo was not called";
        }) {
    EXPECT_TRUE(tried_.Wait());
    EXPECT_TRUE(has_entered_);
  }
  ~Visitor() {
    LetGo();
    if (thread_.joinable()) thread_.join();
  }

  Visitor(const Visitor&) = delete;
  Visitor& operator=(const Visitor&) = delete;

  void LetGo() { let_go_.Set(); }

 private:
  Event tried_;
  Event let_go_;
  std::atomic<bool> has_entered_{false};
  std::thread thread_;
};

TEST(DeliveryGate, IsOpenUntilItIsClosed) {
  DeliveryGate gate;
  EXPECT_FALSE(gate.IsClosed());
  EXPECT_TRUE(CanEnter(gate));
  EXPECT_TRUE(gate.Close());
  EXPECT_TRUE(gate.IsClosed());
  EXPECT_FALSE(CanEnter(gate));
  EXPECT_TRUE(gate.Close());
  EXPECT_FALSE(CanEnter(gate));
}

TEST(DeliveryGate, RunsTheFunctionOnlyWhenOpen) {
  DeliveryGate gate;
  int runs = 0;
  EXPECT_TRUE(DeliveryGate::Call(gate, [&runs] { ++runs; }).has_entered());
  gate.Close();
  EXPECT_FALSE(DeliveryGate::Call(gate, [&runs] { ++runs; }).has_entered());
  EXPECT_EQ(runs, 1);
}

TEST(DeliveryGate, ThrowingFunctionDoesNotEnter) {
  DeliveryGate gate;
  EXPECT_THROW(DeliveryGate::Call(gate, [] { throw std::bad_alloc(); }), std::bad_alloc);
  EXPECT_TRUE(gate.Close());
}

TEST(DeliveryGate, CloseWaitsForAllCalls) {
  DeliveryGate gate;
  Visitor first(gate);
  Visitor second(gate);
  const auto closer = std::async(std::launch::async, [&] { EXPECT_TRUE(gate.Close()); });
  const auto limit = std::chrono::steady_clock::now() + kPatience;
  while (!gate.IsClosed() && std::chrono::steady_clock::now() < limit) std::this_thread::yield();
  EXPECT_TRUE(gate.IsClosed());
  EXPECT_FALSE(HasEnded(closer, kTooEarly));
  first.LetGo();
  EXPECT_FALSE(HasEnded(closer, kTooEarly));
  EXPECT_FALSE(CanEnter(gate));
  second.LetGo();
  EXPECT_TRUE(HasEnded(closer, kPatience));
}

TEST(DeliveryGate, CloseDoesNotWaitForItsOwnCall) {
  DeliveryGate gate;
  {
    const DeliveryGate::Call call(gate);
    EXPECT_FALSE(gate.Close());
  }
  EXPECT_TRUE(gate.Close());
}

TEST(DeliveryGate, CloseInANoWaitScopeWaitsForTheFunction) {
  DeliveryGate gate;
  Event entered;
  Event closed;
  std::atomic<bool> returned_too_early{false};
  std::thread enterer([&] {
    const DeliveryGate::Call call(gate, [&] {
      entered.Set();
      returned_too_early = closed.Wait(kTooEarly);
    });
  });
  ASSERT_TRUE(entered.Wait());
  {
    const NoWaitScope scope;
    gate.Close();
    closed.Set();
  }
  enterer.join();
  EXPECT_FALSE(returned_too_early);
}

TEST(NoWaitScope, NestsAndCoversOnlyItsThread) {
  DeliveryGate gate;
  Visitor visitor(gate);
  std::future<void> closer;
  {
    const NoWaitScope outer;
    { const NoWaitScope inner; }
    EXPECT_FALSE(gate.Close());
    closer = std::async(std::launch::async, [&] { gate.Close(); });
    EXPECT_FALSE(HasEnded(closer, kTooEarly));
  }
  visitor.LetGo();
  EXPECT_TRUE(gate.Close());
  EXPECT_TRUE(HasEnded(closer, kPatience));
}

TEST(DeliveryGate, NoCallIsRunningAfterClose) {
  for (int round = 0; round < 200; ++round) {
    DeliveryGate gate;
    // Not atomic, because the gate orders all accesses.
    int value = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
      threads.emplace_back([&gate, &value] {
        while (DeliveryGate::Call(gate, [&value] { ++value; }).has_entered()) {
        }
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

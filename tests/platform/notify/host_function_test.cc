// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/notify/host_function.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "common_stowraapi/platform/notify/delivery.h"
#include "tests/support/event.h"

namespace stowra_test {
namespace {

using ovrant::HostFunction;
using ovrant::NoWaitScope;

TEST(HostFunction, IsEmptyAtFirstAndAfterAnEmptyFunction) {
  HostFunction<int> place;
  EXPECT_EQ(place.Current(), nullptr);
  place.Replace([](int) {});
  EXPECT_NE(place.Current(), nullptr);
  place.Replace(nullptr);
  EXPECT_EQ(place.Current(), nullptr);
}

TEST(HostFunction, PassesItsArguments) {
  HostFunction<int, std::string> place;
  std::string seen;
  place.Replace([&](int number, const std::string& text) { seen = std::to_string(number) + text; });
  EXPECT_TRUE(place.Current()->Call(1, "a"));
  EXPECT_EQ(seen, "1a");
}

TEST(HostFunction, ReplaceDestroysTheOldFunctionAtOnce) {
  HostFunction<> place;
  const auto held = std::make_shared<int>(0);
  place.Replace([held] { ++*held; });
  const auto known = place.Current();
  EXPECT_EQ(held.use_count(), 2);
  place.Replace(nullptr);
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_FALSE(known->Call());
}

TEST(HostFunction, FunctionReplacedInItsOwnCallLivesUntilItsEnd) {
  HostFunction<> place;
  const auto held = std::make_shared<int>(0);
  place.Replace([&place, held] {
    place.Replace(nullptr);
    ++*held;
  });
  EXPECT_TRUE(place.Current()->Call());
  EXPECT_EQ(place.Current(), nullptr);
  EXPECT_EQ(*held, 1);
  EXPECT_EQ(held.use_count(), 1);
}

TEST(HostFunction, ReplacedFunctionDoesNotTakeTheArguments) {
  HostFunction<std::string> place;
  int calls = 0;
  place.Replace([&calls](const std::string&) { ++calls; });
  const auto old = place.Current();
  place.Replace(nullptr);
  std::string argument = "kept, and too long to be stored inside the string itself";
  EXPECT_FALSE(old->Call(std::move(argument)));
  EXPECT_EQ(argument, "kept, and too long to be stored inside the string itself");
  EXPECT_EQ(calls, 0);
}

TEST(HostFunction, SwallowsExceptionsOfTheFunction) {
  HostFunction<> place;
  place.Replace([] { throw std::runtime_error("from the host"); });
  const auto current = place.Current();
  EXPECT_TRUE(current->Call());
  // The call has ended, so Replace does not wait.
  place.Replace(nullptr);
}

// Whether `replace`, which replaces the function in `place`, waits for a call
// on another thread.
bool Waits(HostFunction<>& place, const std::function<void()>& replace) {
  Event entered;
  Event replaced;
  std::atomic<bool> returned_too_early{false};
  place.Replace([&] {
    entered.Set();
    returned_too_early = replaced.Wait(std::chrono::milliseconds(100));
  });
  std::thread caller([&place] { place.Current()->Call(); });
  EXPECT_TRUE(entered.Wait());
  replace();
  replaced.Set();
  caller.join();
  return !returned_too_early;
}

TEST(HostFunction, ReplaceWaitsForACallOnAnotherThread) {
  HostFunction<> place;
  EXPECT_TRUE(Waits(place, [&] { place.Replace(nullptr); }));
}

TEST(HostFunction, ReplaceInsideAnotherFunctionWaits) {
  HostFunction<> place;
  HostFunction<> other;
  other.Replace([&] { place.Replace(nullptr); });
  EXPECT_TRUE(Waits(place, [&] { EXPECT_TRUE(other.Current()->Call()); }));
}

TEST(HostFunction, FunctionLivesThroughACallThatReplaceDoesNotAwait) {
  HostFunction<> place;
  const auto held = std::make_shared<int>(0);
  Event entered;
  Event replaced;
  place.Replace([&, held] {
    entered.Set();
    EXPECT_TRUE(replaced.Wait());
    ++*held;
  });
  std::thread caller([&place] { place.Current()->Call(); });
  EXPECT_TRUE(entered.Wait());
  {
    const NoWaitScope scope;
    place.Replace(nullptr);
  }
  EXPECT_EQ(held.use_count(), 2);
  replaced.Set();
  caller.join();
  EXPECT_EQ(*held, 1);
  EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
}  // namespace stowra_test

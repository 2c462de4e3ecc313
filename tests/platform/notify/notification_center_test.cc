// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/notification_center.h"
#include "tests/platform/notify/notification_fixture.h"
#include "tests/support/event.h"

namespace stowra_test {
namespace {

using ::testing::ElementsAre;
using ::testing::FieldsAre;

TEST_F(NotificationCenterTest, DeliversNameAndPayloadOnTheSendingThread) {
  int value = 0;
  std::vector<std::tuple<std::string, void*, std::thread::id>> received;
  Observer observer([&](const char* name, void* payload) {
    received.emplace_back(name, payload, std::this_thread::get_id());
  });
  Register({&observer});
  Center().SendNotification(kName, &value);
  EXPECT_THAT(received, ElementsAre(FieldsAre(kName, &value, std::this_thread::get_id())));
}

TEST_F(NotificationCenterTest, MatchesNamesByContent) {
  std::string registered = kName;
  Register({&a_}, registered.c_str());
  registered[0] = 'x';
  EXPECT_EQ(LogAfterSend(std::string(kName).c_str()), "a");
  EXPECT_EQ(LogAfterSend((std::string(kName) + "2").c_str()), "a");
  EXPECT_EQ(LogAfterSend(registered.c_str()), "a");
  EXPECT_EQ(LogAfterSend(""), "a");
}

TEST_F(NotificationCenterTest, ReadsTheNameAnewAtEachSend) {
  Register({&a_});
  Register({&b_}, kOtherName);
  char name[sizeof(kOtherName)];
  for (const char* content : {kName, kOtherName, kName, "", kOtherName}) {
    std::strcpy(name, content);
    Send(name);
  }
  EXPECT_EQ(log_, "abab");
}

TEST_F(NotificationCenterTest, NameWorksAgainAfterItsLastObserverLeft) {
  for (Observer* observer : {&a_, &b_, &a_}) {
    Register({observer});
    Send();
    Send();
    Center().RemoveObserver(observer);
    Send();
  }
  EXPECT_EQ(log_, "aabbaa");
}

TEST_F(NotificationCenterTest, CallsObserversInOrderOfRegistration) {
  Register({&b_, &last_, &a_});
  EXPECT_EQ(LogAfterSend(), "bla");
}

TEST_F(NotificationCenterTest, RegistersTheSamePairOnce) {
  Register({&a_, &b_, &a_});
  EXPECT_EQ(LogAfterSend(), "ab");
  Center().RemoveObserver(&a_);
  EXPECT_EQ(LogAfterSend(), "abb");
}

TEST_F(NotificationCenterTest, RegistersForSeveralNamesAndRemovesFromAll) {
  for (const char* name : {kName, kOtherName}) Register({&a_, &b_}, name);
  EXPECT_EQ(LogAfterSend(kName), "ab");
  EXPECT_EQ(LogAfterSend(kOtherName), "abab");
  Center().RemoveObserver(&a_);
  EXPECT_EQ(LogAfterSend(kName), "ababb");
  EXPECT_EQ(LogAfterSend(kOtherName), "ababbb");
}

TEST_F(NotificationCenterTest, RemovingAnUnknownObserverDoesNothing) {
  Register({&a_});
  Center().RemoveObserver(&b_);
  Center().RemoveObserver(nullptr);
  EXPECT_EQ(LogAfterSend(), "a");
}

TEST_F(NotificationCenterTest, NullArgumentsDoNothing) {
  Register({&a_}, nullptr);
  Register({nullptr});
  Center().SendNotification(nullptr, nullptr);
  EXPECT_EQ(LogAfterSend(), "");
}

TEST_F(NotificationCenterTest, CallsAReaddedObserverLast) {
  Register({&a_, &b_});
  Center().RemoveObserver(&a_);
  Register({&a_});
  EXPECT_EQ(LogAfterSend(), "ba");
}

TEST_F(NotificationCenterTest, ObserverCanRemoveItself) {
  Observer once(Logs('o', [&] { Center().RemoveObserver(&once); }));
  Register({&once, &b_});
  EXPECT_EQ(LogAfterSend(), "ob");
  EXPECT_EQ(LogAfterSend(), "obb");
}

class SelfDeletingObserver final : public ovrant::IObserver {
 public:
  explicit SelfDeletingObserver(std::string& log) : log_(log) {}
  ~SelfDeletingObserver() override { Center().RemoveObserver(this); }

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* /*name*/, void* /*payload*/) override {
    log_ += 's';
    delete this;
  }

 private:
  std::string& log_;
};

TEST_F(NotificationCenterTest, ObserverCanDeleteItself) {
  Center().AddObserver(kName, new SelfDeletingObserver(log_));
  Register({&last_});
  EXPECT_EQ(LogAfterSend(), "sl");
  EXPECT_EQ(LogAfterSend(), "sll");
}

TEST_F(NotificationCenterTest, DoesNotCallAnObserverRemovedDuringTheDelivery) {
  Observer first(Logs('f', [&] { victim_.reset(); }));
  Register({&first, victim_.get(), &last_});
  EXPECT_EQ(LogAfterSend(), "fl");
}

TEST_F(NotificationCenterTest, RemovingAnEarlierObserverSkipsNone) {
  Observer middle(Logs('m', [&] { victim_.reset(); }));
  Register({victim_.get(), &middle, &last_});
  EXPECT_EQ(LogAfterSend(), "vml");
  EXPECT_EQ(LogAfterSend(), "vmlml");
}

TEST_F(NotificationCenterTest, DoesNotCallAnObserverAddedDuringTheDelivery) {
  Observer adder(Logs('s', [&] { Register({&a_}); }));
  Register({&adder});
  EXPECT_EQ(LogAfterSend(), "s");
  EXPECT_EQ(LogAfterSend(), "ssa");
}

TEST_F(NotificationCenterTest, DoesNotCallAnObserverReaddedDuringTheDelivery) {
  bool first_time = true;
  Observer mover(Logs('m', [&] {
    if (!std::exchange(first_time, false)) return;
    Center().RemoveObserver(&a_);
    Register({&a_});
  }));
  Register({&mover, &a_});
  EXPECT_EQ(LogAfterSend(), "m");
  EXPECT_EQ(LogAfterSend(), "mma");
}

TEST_F(NotificationCenterTest, CallsAnObserverThatReaddsItselfOnce) {
  Observer self(Logs('s', [&] {
    Center().RemoveObserver(&self);
    Register({&self});
  }));
  Register({&self, &b_});
  EXPECT_EQ(LogAfterSend(), "sb");
  EXPECT_EQ(LogAfterSend(), "sbbs");
}

TEST_F(NotificationCenterTest, ObserverCanSendAnotherName) {
  Observer sender(Logs('s', [&] { Send(kOtherName); }));
  Register({&sender, &last_});
  Register({&a_}, kOtherName);
  EXPECT_EQ(LogAfterSend(), "sal");
}

TEST_F(NotificationCenterTest, NestedDeliveryCallsAnObserverAddedBeforeIt) {
  int depth = 0;
  Observer sender(Logs('s', [&] {
    if (++depth > 1) return;
    Register({&a_});
    Send();
  }));
  Register({&sender});
  EXPECT_EQ(LogAfterSend(), "ssa");
}

TEST_F(NotificationCenterTest, RemovalInANestedDeliveryHoldsInTheOuterOne) {
  int depth = 0;
  Observer sender(Logs('s', [&] {
    if (++depth > 1) {
      victim_.reset();
    } else {
      Send();
    }
  }));
  Register({&sender, victim_.get(), &last_});
  EXPECT_EQ(LogAfterSend(), "ssll");
}

TEST_F(NotificationCenterTest, DeliveryEndsWhenAllObserversWereReplaced) {
  Observer replacer(Logs('r', [&] {
    Center().RemoveObserver(&a_);
    Center().RemoveObserver(&replacer);
    Register({&a_});
  }));
  Register({&a_, &replacer});
  EXPECT_EQ(LogAfterSend(), "ar");
  EXPECT_EQ(LogAfterSend(), "ara");
}

// The CPU time that this thread takes for 100 deliveries.
std::int64_t NanosecondsOfSends() {
  const auto now = [] {
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
  };
  const std::int64_t start = now();
  for (int i = 0; i < 100; ++i) Send();
  return now() - start;
}

TEST_F(NotificationCenterTest, PassingObserversDoNotSlowLaterSends) {
  bool is_nested = false;
  Observer outer([&] {
    if (std::exchange(is_nested, true)) return;
    const std::int64_t before = NanosecondsOfSends();
    for (int i = 0; i < 200'000; ++i) {
      Register({&a_});
      Center().RemoveObserver(&a_);
    }
    EXPECT_LT(NanosecondsOfSends(), 10 * before + 10'000'000);
  });
  Observer neighbour([] {});
  Register({&outer, &neighbour});
  EXPECT_EQ(LogAfterSend(), "");
}

TEST_F(NotificationCenterTest, PassesOnAnObserversException) {
  bool throws = true;
  Observer thrower(Logs('t', [&] {
    if (throws) throw std::runtime_error("from an observer");
  }));
  Register({&thrower, &last_});
  EXPECT_THROW(Send(), std::runtime_error);
  EXPECT_EQ(log_, "t");
  throws = false;
  EXPECT_EQ(LogAfterSend(), "ttl");
  // The call has ended, so a removal on another thread does not wait.
  Event removed;
  std::thread remover([&] {
    Center().RemoveObserver(&thrower);
    removed.Set();
  });
  EXPECT_TRUE(removed.Wait());
  remover.join();
}

}  // namespace
}  // namespace stowra_test

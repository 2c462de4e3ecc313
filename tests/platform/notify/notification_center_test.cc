// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/notification_center.h"
#include "tests/platform/notify/notification_fixture.h"
#include "tests/support/event.h"

namespace stowra_test {
namespace {

using ::testing::ElementsAre;

TEST_F(NotificationCenterTest, DefaultIsAlwaysTheSameCenter) {
  ASSERT_NE(CNotificationCenter::Default(), nullptr);
  EXPECT_EQ(CNotificationCenter::Default(), CNotificationCenter::Default());
}

TEST_F(NotificationCenterTest, DeliversNameAndPayloadOnTheSendingThread) {
  int value = 0;
  std::vector<std::pair<std::string, void*>> received;
  std::thread::id thread;
  Observer observer([&](const char* name, void* payload) {
    received.emplace_back(name, payload);
    thread = std::this_thread::get_id();
  });
  Center().AddObserver(kName, &observer);

  Center().SendNotification(kName, &value);

  EXPECT_THAT(received, ElementsAre(std::pair(std::string(kName), static_cast<void*>(&value))));
  EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_F(NotificationCenterTest, MatchesNamesByContent) {
  const auto observer = Logger('a');
  std::string registered = kName;
  Center().AddObserver(registered.c_str(), observer.get());
  registered[0] = 'x';

  Send(std::string(kName).c_str());
  EXPECT_EQ(log_, "a");
  Send((std::string(kName) + "2").c_str());
  Send(registered.c_str());
  Send("");
  EXPECT_EQ(log_, "a");
}

TEST_F(NotificationCenterTest, ReadsTheNameAnewAtEachSend) {
  const auto a = Logger('a');
  const auto b = Logger('b');
  Center().AddObserver(kName, a.get());
  Center().AddObserver(kOtherName, b.get());
  char name[sizeof(kOtherName)];
  for (const char* content : {kName, kOtherName, kName, "", kOtherName}) {
    std::strcpy(name, content);
    Send(name);
  }
  EXPECT_EQ(log_, "abab");
}

TEST_F(NotificationCenterTest, NameWorksAgainAfterItsLastObserverLeft) {
  const auto a = Logger('a');
  const auto b = Logger('b');
  for (Observer* observer : {a.get(), b.get(), a.get()}) {
    Center().AddObserver(kName, observer);
    Send();
    Send();
    Center().RemoveObserver(observer);
    Send();
  }
  EXPECT_EQ(log_, "aabbaa");
}

TEST_F(NotificationCenterTest, CallsObserversInOrderOfRegistration) {
  const auto a = Logger('a');
  const auto b = Logger('b');
  const auto c = Logger('c');
  for (Observer* observer : {b.get(), c.get(), a.get()}) Center().AddObserver(kName, observer);
  Send();
  EXPECT_EQ(log_, "bca");
}

TEST_F(NotificationCenterTest, RegistersTheSamePairOnce) {
  const auto a = Logger('a');
  const auto b = Logger('b');
  for (Observer* observer : {a.get(), b.get(), a.get()}) Center().AddObserver(kName, observer);
  Send();
  EXPECT_EQ(log_, "ab");
  Center().RemoveObserver(a.get());
  Send();
  EXPECT_EQ(log_, "abb");
}

TEST_F(NotificationCenterTest, RegistersOneObserverForSeveralNames) {
  const auto a = Logger('a');
  Center().AddObserver(kName, a.get());
  Center().AddObserver(kOtherName, a.get());
  Send(kName);
  Send(kOtherName);
  EXPECT_EQ(log_, "aa");
}

TEST_F(NotificationCenterTest, RemovesAnObserverFromEveryName) {
  const auto a = Logger('a');
  const auto b = Logger('b');
  for (const char* name : {kName, kOtherName}) {
    Center().AddObserver(name, a.get());
    Center().AddObserver(name, b.get());
  }
  Center().RemoveObserver(a.get());
  Send(kName);
  Send(kOtherName);
  EXPECT_EQ(log_, "bb");
}

TEST_F(NotificationCenterTest, RemovingAnUnknownObserverDoesNothing) {
  const auto a = Logger('a');
  const auto stranger = Logger('s');
  Center().AddObserver(kName, a.get());
  Center().RemoveObserver(stranger.get());
  Center().RemoveObserver(nullptr);
  Send();
  EXPECT_EQ(log_, "a");
}

TEST_F(NotificationCenterTest, NullArgumentsDoNothing) {
  const auto a = Logger('a');
  Center().AddObserver(nullptr, a.get());
  Center().AddObserver(kName, nullptr);
  Center().SendNotification(nullptr, nullptr);
  Send();
  EXPECT_EQ(log_, "");
}

TEST_F(NotificationCenterTest, CallsAReaddedObserverLast) {
  const auto a = Logger('a');
  const auto b = Logger('b');
  Center().AddObserver(kName, a.get());
  Center().AddObserver(kName, b.get());
  Center().RemoveObserver(a.get());
  Center().AddObserver(kName, a.get());
  Send();
  EXPECT_EQ(log_, "ba");
}

TEST_F(NotificationCenterTest, PassesADictionaryAsThePayload) {
  const char place = 0;
  const auto& dictionary = reinterpret_cast<const ovrant::Dictionary&>(place);
  const void* received = nullptr;
  std::string received_name;
  Observer observer([&](const char* name, void* payload) {
    received_name = name;
    received = payload;
  });
  observer.OnNotification(kName, dictionary);
  EXPECT_EQ(received, &place);
  EXPECT_EQ(received_name, kName);
}

TEST_F(NotificationCenterTest, ObserverCanRemoveItself) {
  std::unique_ptr<Observer> once;
  once = std::make_unique<Observer>([&] {
    log_ += 'o';
    Center().RemoveObserver(once.get());
  });
  const auto b = Logger('b');
  Center().AddObserver(kName, once.get());
  Center().AddObserver(kName, b.get());
  Send();
  Send();
  EXPECT_EQ(log_, "obb");
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
  const auto last = Logger('l');
  Center().AddObserver(kName, last.get());
  Send();
  EXPECT_EQ(log_, "sl");
  Send();
  EXPECT_EQ(log_, "sll");
}

TEST_F(NotificationCenterTest, DoesNotCallAnObserverRemovedDuringTheDelivery) {
  auto victim = Logger('v');
  Observer first([&] {
    log_ += 'f';
    victim.reset();
  });
  const auto last = Logger('l');
  for (Observer* observer : {&first, victim.get(), last.get()}) {
    Center().AddObserver(kName, observer);
  }
  Send();
  EXPECT_EQ(log_, "fl");
}

TEST_F(NotificationCenterTest, RemovingAnEarlierObserverSkipsNone) {
  auto victim = Logger('v');
  Observer middle([&] {
    log_ += 'm';
    victim.reset();
  });
  const auto last = Logger('l');
  for (Observer* observer : {victim.get(), &middle, last.get()}) {
    Center().AddObserver(kName, observer);
  }
  Send();
  EXPECT_EQ(log_, "vml");
  Send();
  EXPECT_EQ(log_, "vmlml");
}

TEST_F(NotificationCenterTest, DoesNotCallAnObserverAddedDuringTheDelivery) {
  const auto late = Logger('l');
  Observer adder([&] {
    log_ += 'a';
    Center().AddObserver(kName, late.get());
  });
  Center().AddObserver(kName, &adder);
  Send();
  EXPECT_EQ(log_, "a");
  Send();
  EXPECT_EQ(log_, "aal");
}

TEST_F(NotificationCenterTest, DoesNotCallAnObserverReaddedDuringTheDelivery) {
  const auto moved = Logger('m');
  bool first_time = true;
  Observer mover([&] {
    log_ += 'a';
    if (!std::exchange(first_time, false)) return;
    Center().RemoveObserver(moved.get());
    Center().AddObserver(kName, moved.get());
  });
  Center().AddObserver(kName, &mover);
  Center().AddObserver(kName, moved.get());
  Send();
  EXPECT_EQ(log_, "a");
  Send();
  EXPECT_EQ(log_, "aam");
}

TEST_F(NotificationCenterTest, CallsAnObserverThatReaddsItselfOnce) {
  std::unique_ptr<Observer> self;
  self = std::make_unique<Observer>([&] {
    log_ += 's';
    Center().RemoveObserver(self.get());
    Center().AddObserver(kName, self.get());
  });
  const auto b = Logger('b');
  Center().AddObserver(kName, self.get());
  Center().AddObserver(kName, b.get());
  Send();
  EXPECT_EQ(log_, "sb");
  Send();
  EXPECT_EQ(log_, "sbbs");
}

TEST_F(NotificationCenterTest, ObserverCanSendAnotherName) {
  Observer sender([&] {
    log_ += 's';
    Send(kOtherName);
  });
  const auto other = Logger('o');
  const auto last = Logger('l');
  Center().AddObserver(kName, &sender);
  Center().AddObserver(kName, last.get());
  Center().AddObserver(kOtherName, other.get());
  Send();
  EXPECT_EQ(log_, "sol");
}

TEST_F(NotificationCenterTest, NestedDeliveryCallsAnObserverAddedBeforeIt) {
  const auto late = Logger('l');
  int depth = 0;
  Observer sender([&] {
    log_ += 's';
    if (++depth > 1) return;
    Center().AddObserver(kName, late.get());
    Send();
  });
  Center().AddObserver(kName, &sender);
  Send();
  EXPECT_EQ(log_, "ssl");
}

TEST_F(NotificationCenterTest, RemovalInANestedDeliveryHoldsInTheOuterOne) {
  auto victim = Logger('v');
  int depth = 0;
  Observer sender([&] {
    log_ += 's';
    if (++depth > 1) {
      victim.reset();
    } else {
      Send();
    }
  });
  const auto last = Logger('l');
  for (Observer* observer : {&sender, victim.get(), last.get()}) {
    Center().AddObserver(kName, observer);
  }
  Send();
  EXPECT_EQ(log_, "ssll");
}

TEST_F(NotificationCenterTest, DeliveryEndsWhenAllObserversWereReplaced) {
  const auto a = Logger('a');
  Observer b([&] {
    log_ += 'b';
    Center().RemoveObserver(a.get());
    Center().RemoveObserver(&b);
    Center().AddObserver(kName, a.get());
  });
  Center().AddObserver(kName, a.get());
  Center().AddObserver(kName, &b);
  Send();
  EXPECT_EQ(log_, "ab");
  Send();
  EXPECT_EQ(log_, "aba");
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
  const auto passing = Logger('p');
  bool is_nested = false;
  Observer outer([&] {
    if (std::exchange(is_nested, true)) return;
    const std::int64_t before = NanosecondsOfSends();
    for (int i = 0; i < 200'000; ++i) {
      Center().AddObserver(kName, passing.get());
      Center().RemoveObserver(passing.get());
    }
    EXPECT_LT(NanosecondsOfSends(), 10 * before + 10'000'000);
  });
  Observer neighbour([] {});
  Center().AddObserver(kName, &outer);
  Center().AddObserver(kName, &neighbour);
  Send();
  EXPECT_EQ(log_, "");
}

TEST_F(NotificationCenterTest, PassesOnAnObserversException) {
  bool throws = true;
  Observer thrower([&] {
    log_ += 't';
    if (throws) throw std::runtime_error("from an observer");
  });
  const auto last = Logger('l');
  Center().AddObserver(kName, &thrower);
  Center().AddObserver(kName, last.get());
  EXPECT_THROW(Send(), std::runtime_error);
  EXPECT_EQ(log_, "t");

  throws = false;
  Send();
  EXPECT_EQ(log_, "ttl");
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

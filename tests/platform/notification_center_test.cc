#include "common_stowraapi/platform/notification_center.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/observer.h"
#include "tests/support/event.h"

namespace stowra_test {
namespace {

using ::testing::ElementsAre;

constexpr char kName[] = "NotificationCenterTestFirst";
constexpr char kOtherName[] = "NotificationCenterTestSecond";

// How long a removal that should wait is given to return too early.
constexpr std::chrono::milliseconds kTooEarly(100);

CNotificationCenter& Center() { return *CNotificationCenter::Default(); }

void Send(const char* name = kName) { Center().SendNotification(name, nullptr); }

// Runs a function for each notification.
class Observer final : public ovrant::IObserver {
 public:
  explicit Observer(std::function<void(const char*, void*)> function)
      : function_(std::move(function)) {}
  explicit Observer(std::function<void()> function)
      : function_([function = std::move(function)](const char*, void*) { function(); }) {}
  ~Observer() override { Center().RemoveObserver(this); }

  Observer(const Observer&) = delete;
  Observer& operator=(const Observer&) = delete;

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* name, void* payload) override { function_(name, payload); }

 private:
  const std::function<void(const char*, void*)> function_;
};

// Observers that write their own letter into a common log.
class NotificationCenterTest : public ::testing::Test {
 protected:
  std::unique_ptr<Observer> Logger(char letter) {
    return std::make_unique<Observer>([this, letter] { log_ += letter; });
  }

  std::string log_;
};

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

TEST_F(NotificationCenterTest, OneAddressMayHoldOneNameAfterTheOther) {
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

TEST_F(NotificationCenterTest, NameMayLoseItsLastObserverAndFindAnother) {
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

TEST_F(NotificationCenterTest, RemovalOfAnUnknownObserverChangesNothing) {
  const auto a = Logger('a');
  const auto stranger = Logger('s');
  Center().AddObserver(kName, a.get());
  Center().RemoveObserver(stranger.get());
  Center().RemoveObserver(nullptr);
  Send();
  EXPECT_EQ(log_, "a");
}

TEST_F(NotificationCenterTest, NullArgumentsHaveNoEffect) {
  const auto a = Logger('a');
  Center().AddObserver(nullptr, a.get());
  Center().AddObserver(kName, nullptr);
  Center().SendNotification(nullptr, nullptr);
  Send();
  EXPECT_EQ(log_, "");
}

TEST_F(NotificationCenterTest, ObserverThatComesBackStandsLast) {
  const auto a = Logger('a');
  const auto b = Logger('b');
  Center().AddObserver(kName, a.get());
  Center().AddObserver(kName, b.get());
  Center().RemoveObserver(a.get());
  Center().AddObserver(kName, a.get());
  Send();
  EXPECT_EQ(log_, "ba");
}

TEST_F(NotificationCenterTest, DictionaryBecomesThePayload) {
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

TEST_F(NotificationCenterTest, ObserverMayRemoveItself) {
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

TEST_F(NotificationCenterTest, ObserverMayDeleteItself) {
  Center().AddObserver(kName, new SelfDeletingObserver(log_));
  const auto last = Logger('l');
  Center().AddObserver(kName, last.get());
  Send();
  EXPECT_EQ(log_, "sl");
  Send();
  EXPECT_EQ(log_, "sll");
}

TEST_F(NotificationCenterTest, ObserverThatIsDeletedByAnEarlierOneIsNotCalled) {
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

TEST_F(NotificationCenterTest, RemovalOfAnEarlierObserverSkipsNobody) {
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

TEST_F(NotificationCenterTest, ObserverThatIsAddedDuringADeliveryWaitsForTheNext) {
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

TEST_F(NotificationCenterTest, ObserverThatComesBackDuringADeliveryWaitsForTheNext) {
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

TEST_F(NotificationCenterTest, ObserverThatPutsItselfLastIsCalledOnce) {
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

TEST_F(NotificationCenterTest, ObserverMaySendAnotherName) {
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

TEST_F(NotificationCenterTest, ObserverAddedInAnOuterDeliveryIsCalledInAnInnerOne) {
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

TEST_F(NotificationCenterTest, RemovalInAnInnerDeliveryHoldsInTheOuterOne) {
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

TEST_F(NotificationCenterTest, LastObserverMayRemoveAllAndAddAgain) {
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

TEST_F(NotificationCenterTest, PassesOnWhatAnObserverThrows) {
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
  // Nothing is left that a removal on another thread would wait for.
  Event removed;
  std::thread remover([&] {
    Center().RemoveObserver(&thrower);
    removed.Set();
  });
  EXPECT_TRUE(removed.Wait());
  remover.join();
}

// An observer that stays inside its notification on a thread of its own until it is let go.
class BusyObserver {
 public:
  explicit BusyObserver(std::function<void()> then = nullptr)
      : observer_([this, then = std::move(then)] {
          entered_.Set();
          if (!let_go_.Wait()) ADD_FAILURE() << "nobody let the observer go";
          if (then) then();
          left_ = true;
        }) {
    Center().AddObserver(kName, &observer_);
    sender_ = std::thread([] { Send(); });
    EXPECT_TRUE(entered_.Wait());
  }
  ~BusyObserver() {
    LetGo();
    sender_.join();
  }

  BusyObserver(const BusyObserver&) = delete;
  BusyObserver& operator=(const BusyObserver&) = delete;

  Observer& observer() { return observer_; }
  void LetGo() { let_go_.Set(); }
  bool has_left() const { return left_; }

 private:
  Event entered_;
  Event let_go_;
  std::atomic<bool> left_{false};
  Observer observer_;
  std::thread sender_;
};

TEST_F(NotificationCenterTest, RemovalWaitsForACallOnAnotherThread) {
  Event removed;
  std::atomic<bool> returned_too_early{false};
  BusyObserver busy([&] { returned_too_early = removed.Wait(kTooEarly); });
  std::atomic<bool> had_left{false};
  std::thread remover([&] {
    busy.LetGo();
    Center().RemoveObserver(&busy.observer());
    had_left = busy.has_left();
    removed.Set();
  });
  remover.join();
  EXPECT_TRUE(had_left);
  EXPECT_FALSE(returned_too_early);
}

TEST_F(NotificationCenterTest, SecondRemovalWaitsTooForACallOnAnotherThread) {
  Event removed;
  std::atomic<bool> returned_too_early{false};
  BusyObserver busy([&] { returned_too_early = removed.Wait(kTooEarly); });
  // The first one is made inside a delivery, so it does not wait.
  Observer inside([&] { Center().RemoveObserver(&busy.observer()); });
  Center().AddObserver(kOtherName, &inside);
  Send(kOtherName);
  EXPECT_FALSE(busy.has_left());

  std::thread remover([&] {
    busy.LetGo();
    Center().RemoveObserver(&busy.observer());
    removed.Set();
  });
  remover.join();
  EXPECT_FALSE(returned_too_early);
}

// One thread is inside forty deliveries, each made by the observer of the one before; whichever
// of these observers is removed, the removal waits until that thread has left it.
TEST_F(NotificationCenterTest, RemovalWaitsForACallHoweverManyAreUnderWay) {
  constexpr std::size_t kDepth = 40;
  const auto name = [](std::size_t depth) { return std::string(kName) + std::to_string(depth); };
  for (std::size_t removed = 0; removed < kDepth; removed += 3) {
    Event all_inside;
    Event let_go;
    Event returned;
    std::atomic<bool> left{false};
    std::atomic<bool> returned_too_early{false};
    std::vector<std::unique_ptr<Observer>> observers;
    for (std::size_t depth = 0; depth < kDepth; ++depth) {
      observers.push_back(std::make_unique<Observer>([&, depth] {
        if (depth + 1 < kDepth) {
          Send(name(depth + 1).c_str());
        } else {
          all_inside.Set();
          EXPECT_TRUE(let_go.Wait());
          returned_too_early = returned.Wait(kTooEarly / 10);
        }
        if (depth == removed) left = true;
      }));
      Center().AddObserver(name(depth).c_str(), observers.back().get());
    }
    std::thread sender([&] { Send(name(0).c_str()); });
    EXPECT_TRUE(all_inside.Wait());
    std::thread remover([&] {
      let_go.Set();
      Center().RemoveObserver(observers[removed].get());
      EXPECT_TRUE(left) << removed;
      returned.Set();
    });
    remover.join();
    sender.join();
    EXPECT_FALSE(returned_too_early) << removed;
  }
}

TEST_F(NotificationCenterTest, CenterStaysUsableDuringACallOnAnotherThread) {
  BusyObserver busy;
  const auto a = Logger('a');
  const auto b = Logger('b');
  Center().AddObserver(kOtherName, a.get());
  Center().AddObserver(kOtherName, b.get());
  Send(kOtherName);
  Center().RemoveObserver(a.get());
  Send(kOtherName);
  EXPECT_EQ(log_, "abb");
  EXPECT_FALSE(busy.has_left());
}

TEST_F(NotificationCenterTest, ObserverAddedDuringACallOnAnotherThreadWaitsForTheNextDelivery) {
  const auto late = Logger('l');
  {
    BusyObserver busy;
    Center().AddObserver(kName, late.get());
  }
  EXPECT_EQ(log_, "");
  Send();
  EXPECT_EQ(log_, "l");
}

TEST_F(NotificationCenterTest, ObserverRemovedDuringACallOnAnotherThreadIsNotCalledAfterwards) {
  const auto victim = Logger('v');
  const auto last = Logger('l');
  Event added;
  Event removed;
  Observer first([&] {
    added.Set();
    EXPECT_TRUE(removed.Wait());
  });
  for (Observer* observer : {&first, victim.get(), last.get()}) {
    Center().AddObserver(kName, observer);
  }
  std::thread sender([] { Send(); });
  EXPECT_TRUE(added.Wait());
  Center().RemoveObserver(victim.get());
  removed.Set();
  sender.join();
  EXPECT_EQ(log_, "l");
}

TEST_F(NotificationCenterTest, RemovalInsideADeliveryDoesNotWait) {
  BusyObserver busy;
  bool still_busy = false;
  Observer remover([&] {
    Center().RemoveObserver(&busy.observer());
    still_busy = !busy.has_left();
  });
  Center().AddObserver(kOtherName, &remover);
  Send(kOtherName);
  EXPECT_TRUE(still_busy);
}

TEST_F(NotificationCenterTest, ObserversThatRemoveEachOtherDoNotWaitForEachOther) {
  Event first_inside;
  Event second_inside;
  std::unique_ptr<Observer> first;
  std::unique_ptr<Observer> second;
  first = std::make_unique<Observer>([&] {
    first_inside.Set();
    EXPECT_TRUE(second_inside.Wait());
    Center().RemoveObserver(second.get());
  });
  second = std::make_unique<Observer>([&] {
    second_inside.Set();
    EXPECT_TRUE(first_inside.Wait());
    Center().RemoveObserver(first.get());
  });
  Center().AddObserver(kName, first.get());
  Center().AddObserver(kOtherName, second.get());
  Event first_ended;
  Event second_ended;
  std::thread first_sender([&] {
    Send(kName);
    first_ended.Set();
  });
  std::thread second_sender([&] {
    Send(kOtherName);
    second_ended.Set();
  });
  EXPECT_TRUE(first_ended.Wait());
  EXPECT_TRUE(second_ended.Wait());
  first_sender.join();
  second_sender.join();
}

TEST_F(NotificationCenterTest, RemovedObserversAreNeverCalledWhateverOtherThreadsDo) {
  constexpr int kRounds = 2000;
  std::atomic<bool> stop{false};
  std::vector<std::thread> senders;
  for (const char* name : {kName, kOtherName}) {
    senders.emplace_back([&stop, name] {
      while (!stop) Send(name);
    });
  }
  std::atomic<int> calls_after_removal{0};
  std::vector<std::thread> owners;
  for (int i = 0; i < 3; ++i) {
    owners.emplace_back([&calls_after_removal] {
      for (int round = 0; round < kRounds; ++round) {
        // Not atomic: only the barrier of RemoveObserver keeps the two threads apart.
        bool removed = false;
        Observer observer([&] {
          if (removed) ++calls_after_removal;
        });
        Center().AddObserver(kName, &observer);
        Center().AddObserver(kOtherName, &observer);
        Send();
        Center().RemoveObserver(&observer);
        removed = true;
      }
    });
  }
  for (std::thread& owner : owners) owner.join();
  stop = true;
  for (std::thread& sender : senders) sender.join();
  EXPECT_EQ(calls_after_removal, 0);
}

TEST_F(NotificationCenterTest, DeliversEveryNotificationOfEveryThread) {
  constexpr int kSends = 1000;
  constexpr int kThreads = 4;
  std::atomic<int> calls{0};
  Observer observer([&] { ++calls; });
  Center().AddObserver(kName, &observer);
  std::vector<std::thread> senders;
  for (int i = 0; i < kThreads; ++i) {
    senders.emplace_back([] {
      for (int sent = 0; sent < kSends; ++sent) Send();
    });
  }
  for (std::thread& sender : senders) sender.join();
  EXPECT_EQ(calls, kSends * kThreads);
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
// Deletion of transport and delegate while a notification is delivered.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/notification_center.h"
#include "tests/platform/http/deletion_fixture.h"

namespace stowra_test {
namespace {

// A name that no transfer of Background posts.
constexpr char kOther[] = "DeletionInDeliveryTestOther";

// How long to wait for a destructor that returns too early.
constexpr std::chrono::milliseconds kTooEarly(100);

class DeletionInDeliveryTest : public DeletionFixture {
 protected:
  // Deletes both objects inside the notification, which must be `name` and the only one.
  static void ExpectDeletionInside(const std::string& url, const char* name) {
    Background* current = nullptr;
    Event deleted;
    Background background(url, [&] {
      DeleteBoth(*current);
      deleted.Set();
    });
    current = &background;
    ASSERT_TRUE(background.Start());
    EXPECT_TRUE(deleted.Wait());
    LetWorkerCatchUp();
    EXPECT_EQ(background.recorder.names(), std::vector<std::string>{name});
  }
};

IN_BOTH_ORDERS(DeletionInDeliveryTest);

TEST_P(DeletionInDeliveryTest, InsideTheNotification) {
  ExpectDeletionInside(hello_.Url(), kReturned);
}

TEST_P(DeletionInDeliveryTest, InsideTheNotificationOfAFailure) {
  ExpectDeletionInside("none:", kFailed);
}

TEST_P(DeletionInDeliveryTest, DuringThePostWaitsForItsEnd) {
  Event entered;
  Event deleted;
  std::atomic<bool> returned_too_early{false};
  std::atomic<bool> left{false};
  Background background(hello_.Url(), [&] {
    entered.Set();
    returned_too_early = deleted.Wait(kTooEarly);
    left = true;
  });
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(entered.Wait());
  DeleteFirst(background);
  EXPECT_TRUE(left);
  deleted.Set();
  DeleteBoth(background);
  EXPECT_FALSE(returned_too_early);
}

TEST_P(DeletionInDeliveryTest, InsideAnotherDeliveryWaitsForAPostUnderWay) {
  Event entered;
  Event deleted;
  std::atomic<bool> returned_too_early{false};
  Background background(hello_.Url(), [&] {
    entered.Set();
    returned_too_early = deleted.Wait(kTooEarly);
  });
  NotificationRecorder other({kOther}, [&] {
    DeleteFirst(background);
    deleted.Set();
  });
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(entered.Wait());
  CNotificationCenter::Default()->SendNotification(kOther, nullptr);
  DeleteBoth(background);
  EXPECT_TRUE(background.recorder.WaitFor(1));
  EXPECT_FALSE(returned_too_early);
}

TEST_P(DeletionInDeliveryTest, OnTheWorkerDoesNotWaitForAPostUnderWay) {
  Event entered;
  Event deleted;
  std::function<void()> completion;
  Event queued;
  InternetData::SetCompletionExecutor([&](std::function<void()> work) {
    completion = std::move(work);
    queued.Set();
  });
  Background background(hello_.Url(), [&] {
    entered.Set();
    EXPECT_TRUE(deleted.Wait());
  });
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(queued.Wait());
  InternetData::SetCompletionExecutor(nullptr);
  std::thread runner([&completion] { completion(); });
  ASSERT_TRUE(entered.Wait());

  NotificationRecorder on_worker({kOther}, [&] {
    DeleteFirst(background);
    deleted.Set();
  });
  const auto delegate = MakeDelegate(nullptr, kOther, kOther);
  InternetData transport(Text("none:"));
  ASSERT_TRUE(transport.DownloadWithDelegate(delegate.get(), nullptr));
  EXPECT_TRUE(on_worker.WaitFor(1));
  runner.join();
}

TEST_P(DeletionInDeliveryTest, FromTwoThreadsAtTheSameTime) {
  for (int i = 0; i < 50; ++i) {
    Background background(hello_.Url());
    ASSERT_TRUE(background.Start());
    std::thread other([&background] { background.delegate.reset(); });
    background.transport.reset();
    other.join();
    const std::size_t posted = background.recorder.entries().size();
    EXPECT_EQ(background.CountPosts(), posted);
  }
}

}  // namespace
}  // namespace stowra_test

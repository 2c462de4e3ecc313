// SPDX-License-Identifier: MIT
// Deletion of transport and delegate at any moment of a background transfer.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/notification_center.h"
#include "tests/platform/http/deletion_fixture.h"
#include "tests/platform/http/handlers.h"
#include "tests/support/full_listener.h"

namespace stowra_test {
namespace {

using Clock = std::chrono::steady_clock;

class DeletionTest : public DeletionFixture {
 protected:
  // Deletes both objects of a running transfer. Expects that this is quick and that nothing is
  // posted.
  static void ExpectQuickDeletion(Background& background) {
    const auto begin = Clock::now();
    DeleteBoth(background);
    EXPECT_LT(Clock::now() - begin, kPatience);
    EXPECT_EQ(background.CountPosts(), 0U);
  }

  // Deletes one object and then the other right after the start. Expects no post after the first.
  static void ExpectNoPostAfterDeletion(const std::string& url) {
    for (int i = 0; i < 50; ++i) {
      Background background(url);
      ASSERT_TRUE(background.Start());
      DeleteFirst(background);
      const std::size_t posted = background.recorder.entries().size();
      DeleteBoth(background);
      EXPECT_EQ(background.CountPosts(), posted);
    }
  }
};

IN_BOTH_ORDERS(DeletionTest);

TEST_P(DeletionTest, BeforeAnyTransfer) {
  Background background(hello_.Url());
  DeleteBoth(background);
}

TEST_P(DeletionTest, RightAfterTheStart) { ExpectNoPostAfterDeletion(hello_.Url()); }

TEST_P(DeletionTest, WhileTheNameIsLookedUp) {
  ExpectNoPostAfterDeletion("http://localhost:" + std::to_string(hello_.port()) + "/");
}

TEST_P(DeletionTest, BeforeTheTransferHasBegun) {
  static constexpr char kWaiting[] = "DeletionTestWaiting";
  // A delivery blocks the worker.
  Event go_on;
  Event entered;
  Background holder(hello_.Url(), [&] {
    entered.Set();
    EXPECT_TRUE(go_on.Wait());
  });
  ASSERT_TRUE(holder.Start());
  ASSERT_TRUE(entered.Wait());
  const RawServer server(Always(Response(200, "hello")));
  NotificationRecorder recorder({kWaiting});
  Background waiting(server.Url());
  waiting.delegate = MakeDelegate(nullptr, kWaiting, kWaiting);
  ASSERT_TRUE(waiting.Start());
  DeleteBoth(waiting);
  go_on.Set();
  LetWorkerCatchUp();
  EXPECT_TRUE(recorder.entries().empty());
  EXPECT_EQ(server.connections(), 0);
}

TEST_P(DeletionTest, WhileTheServerIsSilentAndAnotherTransferGoesOn) {
  const RawServer server(Silence());
  const RawServer other(Silence());
  Background background(server.Url());
  StartAt(server, background);
  Background younger(other.Url());
  StartAt(other, younger);
  ExpectQuickDeletion(background);
  EXPECT_TRUE(server.WaitUntilUnused());
}

TEST_P(DeletionTest, WhileAnUploadIsSent) {
  const RawServer server(AnswerUnread(""), kUnread);
  Background background(server.Url());
  ASSERT_TRUE(background.StartUpload(std::string(kLargeBody, 'x')));
  ASSERT_TRUE(server.WaitForRequests(1));
  ExpectQuickDeletion(background);
}

TEST_P(DeletionTest, WhileTheConnectionIsMade) {
  const FullListener listener;
  Background background(listener.Url());
  ASSERT_TRUE(background.Start());
  LetWorkerCatchUp();
  ExpectQuickDeletion(background);
}

TEST_P(DeletionTest, WhileTlsIsNegotiated) {
  const RawServer server(Silence());
  // The client's first message is not an HTTP request, so the server keeps waiting.
  Background background("https" + server.Url().substr(4));
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(server.WaitForConnections(1));
  ExpectQuickDeletion(background);
  EXPECT_TRUE(server.WaitUntilUnused());
}

TEST_P(DeletionTest, OfOneObjectEndsTheTransfer) {
  const RawServer server(Silence());
  Background background(server.Url());
  StartAt(server, background);
  DeleteFirst(background);
  EXPECT_TRUE(server.WaitUntilUnused());
  EXPECT_EQ(background.CountPosts(), 0U);
}

TEST_P(DeletionTest, WhileTheBodyArrives) {
  const RawServer server(Endless("HTTP/1.1 200 OK\r\n\r\n"));
  Event progress;
  InternetData::SetTransferListener([&progress](const TransferEvent& event) {
    if (event.kind == TransferEvent::Kind::kProgress) progress.Set();
  });
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(progress.Wait());
  DeleteBoth(background);
  EXPECT_TRUE(server.WaitUntilUnused());
  EXPECT_EQ(background.CountPosts(), 0U);
}

TEST_P(DeletionTest, AfterTheEnd) {
  Background background(hello_.Url());
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  DeleteBoth(background);
  EXPECT_EQ(background.CountPosts(), 1U);
}

TEST_P(DeletionTest, OfManyStalledTransfersIsQuick) {
  const RawServer server(Silence());
  std::deque<Background> all;
  for (int i = 0; i < 300; ++i) ASSERT_TRUE(all.emplace_back(server.Url()).Start());
  ASSERT_TRUE(server.WaitForRequests(1));
  const auto begin = Clock::now();
  for (Background& each : all) DeleteBoth(each);
  EXPECT_LT(Clock::now() - begin, kPatience);
  EXPECT_TRUE(server.WaitUntilUnused());
  LetWorkerCatchUp();
  for (Background& each : all) EXPECT_TRUE(each.recorder.entries().empty());
}

// Deletion while a notification is delivered.

// A name that no transfer of Background posts.
constexpr char kOther[] = "DeletionInDeliveryTestOther";

// How long to wait for a destructor that returns too early.
constexpr std::chrono::milliseconds kTooEarly(100);

class DeletionInDeliveryTest : public DeletionFixture {};

IN_BOTH_ORDERS(DeletionInDeliveryTest);

TEST_P(DeletionInDeliveryTest, InsideTheNotification) {
  for (const std::string& url : {hello_.Url(), std::string("none:")}) {
    Event deleted;
    Background background(url, [&] {
      DeleteBoth(background);
      deleted.Set();
    });
    ASSERT_TRUE(background.Start());
    EXPECT_TRUE(deleted.Wait());
    LetWorkerCatchUp();
    EXPECT_EQ(background.recorder.names(),
              std::vector<std::string>{url == "none:" ? kFailed : kReturned});
  }
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

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "common_stowraapi/platform/http/background_worker.h"
#include "common_stowraapi/platform/notification_center.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/full_listener.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// A name that no transfer of Background posts.
constexpr char kOther[] = "BackgroundTestOther";

// How long to wait for a destructor that returns too early.
constexpr milliseconds kTooEarly(100);

class BackgroundTest : public TransportTest {
 protected:
  const RawServer hello_{Always(Response(200, "hello"))};
};

TEST_F(BackgroundTest, ReturnsAtOnceAndPostsTheReturnedName) {
  Event answer;
  const RawServer server([&answer](const RawRequest&, RawConnection& connection) {
    EXPECT_TRUE(answer.Wait());
    connection.Write(Response(200, "hello"));
  });
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(server.WaitForRequests(1));
  EXPECT_TRUE(background.recorder.entries().empty());
  answer.Set();
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(background.transport->status_code(), 200);
  EXPECT_EQ(BodyOf(*background.transport), "hello");
}

TEST_F(BackgroundTest, PayloadIsTheContextPointer) {
  int context = 0;
  Background background(hello_.Url());
  background.delegate = MakeDelegate(&context);
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(background.recorder.entries().at(0).payload, &context);

  Background failing("none:");
  failing.delegate = MakeDelegate(&context);
  ASSERT_TRUE(failing.Start());
  EXPECT_EQ(failing.WaitForEnd(), kFailed);
  EXPECT_EQ(failing.recorder.entries().at(0).payload, &context);
}

TEST_F(BackgroundTest, UserDataIsNotUsed) {
  int user_data = 0;
  Background background(hello_.Url());
  ASSERT_TRUE(background.transport->DownloadWithDelegate(background.delegate.get(), &user_data));
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(background.recorder.entries().at(0).payload, nullptr);
}

TEST_F(BackgroundTest, StartsNothingWithoutADelegate) {
  InternetData transport(Text(hello_.Url()));
  EXPECT_FALSE(transport.DownloadWithDelegate(nullptr, nullptr));
  EXPECT_FALSE(transport.UploadWithDelegate(nullptr, nullptr));
  LetWorkerCatchUp();
  EXPECT_EQ(hello_.connections(), 0);
}

TEST_F(BackgroundTest, PostsExactlyOneName) {
  Background background(hello_.Url());
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  LetWorkerCatchUp();
  EXPECT_EQ(background.recorder.names(), std::vector<std::string>{kReturned});
}

TEST_F(BackgroundTest, PostsTheNamesOfTheDelegate) {
  static constexpr char kOwnReturned[] = "BackgroundTestOwnReturned";
  static constexpr char kOwnFailed[] = "BackgroundTestOwnFailed";
  NotificationRecorder recorder({kOwnReturned, kOwnFailed});
  const auto delegate = MakeDelegate(nullptr, kOwnReturned, kOwnFailed);
  InternetData good(Text(hello_.Url()));
  InternetData bad(Text("none:"));
  ASSERT_TRUE(good.DownloadWithDelegate(delegate.get(), nullptr));
  ASSERT_TRUE(recorder.WaitFor(1));
  ASSERT_TRUE(bad.DownloadWithDelegate(delegate.get(), nullptr));
  ASSERT_TRUE(recorder.WaitFor(2));
  EXPECT_EQ(recorder.names(), (std::vector<std::string>{kOwnReturned, kOwnFailed}));
}

TEST_F(BackgroundTest, OneDelegateServesSeveralTransfers) {
  Background background(hello_.Url());
  std::vector<std::unique_ptr<InternetData>> transports;
  for (int i = 0; i < 5; ++i) {
    transports.push_back(std::make_unique<InternetData>(Text(hello_.Url())));
    ASSERT_TRUE(transports.back()->DownloadWithDelegate(background.delegate.get(), nullptr));
  }
  EXPECT_TRUE(background.recorder.WaitFor(5));
}

TEST_F(BackgroundTest, TransfersRunAtTheSameTime) {
  constexpr int kCount = 20;
  std::atomic<int> inside{0};
  Event all_inside;
  const RawServer server([&](const RawRequest&, RawConnection& connection) {
    if (++inside == kCount) all_inside.Set();
    EXPECT_TRUE(all_inside.Wait());
    connection.Write(Response(200, "hello"));
  });
  Background background(server.Url());
  std::vector<std::unique_ptr<InternetData>> transports;
  for (int i = 0; i < kCount; ++i) {
    transports.push_back(std::make_unique<InternetData>(Text(server.Url())));
    ASSERT_TRUE(transports.back()->DownloadWithDelegate(background.delegate.get(), nullptr));
  }
  EXPECT_TRUE(background.recorder.WaitFor(kCount));
}

TEST_F(BackgroundTest, TransfersBeyondTheLimitWaitForTheirTurn) {
  constexpr std::size_t kLimit = ovrant::internet::BackgroundWorker::kMaxActive;
  const RawServer server(Silence());
  const auto delegate = MakeDelegate();
  std::vector<std::unique_ptr<InternetData>> stalled;
  for (std::size_t i = 0; i < kLimit; ++i) {
    stalled.push_back(std::make_unique<InternetData>(Text(server.Url())));
    ASSERT_TRUE(stalled.back()->DownloadWithDelegate(delegate.get(), nullptr));
  }
  ASSERT_TRUE(server.WaitForRequests(kLimit));
  Background next(hello_.Url());
  ASSERT_TRUE(next.Start());
  EXPECT_EQ(hello_.connections(), 0);
  stalled.pop_back();
  EXPECT_EQ(next.WaitForEnd(), kReturned);
}

TEST_F(BackgroundTest, SecondTransferReplacesTheFirst) {
  static constexpr char kFirst[] = "BackgroundTestFirst";
  NotificationRecorder first_recorder({kFirst});
  const auto first_delegate = MakeDelegate(nullptr, kFirst, kFirst);
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    if (request.connection == 0) connection.Stall();
    connection.Write(Response(200, "second"));
  });
  Background background(server.Url());
  ASSERT_TRUE(background.transport->DownloadWithDelegate(first_delegate.get(), nullptr));
  ASSERT_TRUE(server.WaitForRequests(1));
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(BodyOf(*background.transport), "second");
  LetWorkerCatchUp();
  EXPECT_TRUE(first_recorder.entries().empty());
}

TEST_F(BackgroundTest, SynchronousTransferReplacesABackgroundOne) {
  const RawServer server(Silence());
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(server.WaitForRequests(1));
  EXPECT_TRUE(background.transport->SendAndRead(Text(hello_.Url()), nullptr, nullptr, nullptr,
                                                nullptr, false, false, true, "", "", nullptr));
  EXPECT_EQ(BodyOf(*background.transport), "hello");
  EXPECT_TRUE(server.WaitUntilUnused());
  LetWorkerCatchUp();
  EXPECT_TRUE(background.recorder.entries().empty());
  EXPECT_EQ(BodyOf(*background.transport), "hello");
}

TEST_F(BackgroundTest, TransportCanBeUsedAgainInsideItsNotification) {
  int ends = 0;
  Background* current = nullptr;
  Background background(hello_.Url(), [&] {
    if (++ends < 3 && !current->Start()) ADD_FAILURE();
  });
  current = &background;
  ASSERT_TRUE(background.Start());
  EXPECT_TRUE(background.recorder.WaitFor(3));
}

TEST_F(BackgroundTest, ThrowingObserverDoesNotEndTheThread) {
  Event thrown;
  {
    Background throwing(hello_.Url(), [&thrown] {
      thrown.Set();
      throw std::runtime_error("from an observer");
    });
    ASSERT_TRUE(throwing.Start());
    ASSERT_TRUE(thrown.Wait());
  }
  Background background(hello_.Url());
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
}

// Which of the two objects goes first.
enum class Order { kDelegateFirst, kTransportFirst };

void PrintTo(Order order, std::ostream* out) {
  *out << (order == Order::kDelegateFirst ? "DelegateFirst" : "TransportFirst");
}

class DeletionTest : public BackgroundTest, public ::testing::WithParamInterface<Order> {
 protected:
  static void DeleteFirst(Background& background) {
    if (GetParam() == Order::kDelegateFirst) {
      background.delegate.reset();
    } else {
      background.transport.reset();
    }
  }
  static void DeleteBoth(Background& background) {
    DeleteFirst(background);
    background.delegate.reset();
    background.transport.reset();
  }
};

INSTANTIATE_TEST_SUITE_P(Orders, DeletionTest,
                         ::testing::Values(Order::kDelegateFirst, Order::kTransportFirst),
                         ::testing::PrintToStringParamName());

TEST_P(DeletionTest, BeforeAnyTransfer) {
  Background background(hello_.Url());
  DeleteBoth(background);
}

TEST_P(DeletionTest, RightAfterTheStart) {
  for (int i = 0; i < 50; ++i) {
    Background background(hello_.Url());
    ASSERT_TRUE(background.Start());
    DeleteFirst(background);
    const std::size_t posted = background.recorder.entries().size();
    DeleteBoth(background);
    LetWorkerCatchUp();
    EXPECT_EQ(background.recorder.entries().size(), posted);
  }
}

TEST_P(DeletionTest, BeforeTheTransferHasBegun) {
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
  NotificationRecorder recorder({"BackgroundTestWaiting"});
  auto delegate = MakeDelegate(nullptr, "BackgroundTestWaiting", "BackgroundTestWaiting");
  auto transport = std::make_unique<InternetData>(Text(server.Url()));
  ASSERT_TRUE(transport->DownloadWithDelegate(delegate.get(), nullptr));
  if (GetParam() == Order::kDelegateFirst) delegate.reset();
  transport.reset();
  delegate.reset();
  go_on.Set();
  LetWorkerCatchUp();
  EXPECT_TRUE(recorder.entries().empty());
  EXPECT_EQ(server.connections(), 0);
}

TEST_P(DeletionTest, WhileTheServerIsSilent) {
  const RawServer server(Silence());
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(server.WaitForRequests(1));
  const auto begin = Clock::now();
  DeleteBoth(background);
  EXPECT_LT(Clock::now() - begin, kSoon);
  EXPECT_TRUE(server.WaitUntilUnused());
  LetWorkerCatchUp();
  EXPECT_TRUE(background.recorder.entries().empty());
}

TEST_P(DeletionTest, OfOneObjectEndsTheTransfer) {
  const RawServer server(Silence());
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(server.WaitForRequests(1));
  DeleteFirst(background);
  EXPECT_TRUE(server.WaitUntilUnused());
  LetWorkerCatchUp();
  EXPECT_TRUE(background.recorder.entries().empty());
}

TEST_P(DeletionTest, WhileTheBodyArrives) {
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\n\r\n");
    const std::string piece(1 << 16, 'x');
    while (connection.Write(piece)) {
    }
  });
  Event progress;
  InternetData::SetTransferListener([&progress](const TransferEvent& event) {
    if (event.kind == TransferEvent::Kind::kProgress) progress.Set();
  });
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(progress.Wait());
  DeleteBoth(background);
  EXPECT_TRUE(server.WaitUntilUnused());
  LetWorkerCatchUp();
  EXPECT_TRUE(background.recorder.entries().empty());
  InternetData::SetTransferListener(nullptr);
}

TEST_P(DeletionTest, WhileAnUploadIsSent) {
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) { connection.StallWithoutReading(); },
      {nullptr, false, 4096});
  Background background(server.Url());
  SetSendData(std::string(kLargeBody, 'x'), *background.transport);
  ASSERT_TRUE(background.transport->UploadWithDelegate(background.delegate.get(), nullptr));
  ASSERT_TRUE(server.WaitForRequests(1));
  const auto begin = Clock::now();
  DeleteBoth(background);
  EXPECT_LT(Clock::now() - begin, kSoon);
  LetWorkerCatchUp();
  EXPECT_TRUE(background.recorder.entries().empty());
}

TEST_P(DeletionTest, WhileTheConnectionIsMade) {
  const FullListener listener;
  Background background(listener.Url());
  ASSERT_TRUE(background.Start());
  LetWorkerCatchUp();
  const auto begin = Clock::now();
  DeleteBoth(background);
  EXPECT_LT(Clock::now() - begin, kSoon);
  LetWorkerCatchUp();
  EXPECT_TRUE(background.recorder.entries().empty());
}

TEST_P(DeletionTest, WhileTlsIsNegotiated) {
  const RawServer server(Silence());
  // The client's first message is not an HTTP request, so the server keeps waiting.
  Background background("https" + server.Url().substr(4));
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(server.WaitForConnections(1));
  const auto begin = Clock::now();
  DeleteBoth(background);
  EXPECT_LT(Clock::now() - begin, kSoon);
  EXPECT_TRUE(server.WaitUntilUnused());
  LetWorkerCatchUp();
  EXPECT_TRUE(background.recorder.entries().empty());
}

TEST_P(DeletionTest, WhileTheNameIsLookedUp) {
  const std::string url = "http://localhost:" + std::to_string(hello_.port()) + "/";
  for (int i = 0; i < 50; ++i) {
    Background background(url);
    ASSERT_TRUE(background.Start());
    DeleteBoth(background);
    const std::size_t posted = background.recorder.entries().size();
    LetWorkerCatchUp();
    EXPECT_EQ(background.recorder.entries().size(), posted);
  }
}

TEST_P(DeletionTest, DuringThePostWaitsForItsEnd) {
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

TEST_P(DeletionTest, InsideTheNotification) {
  Background* current = nullptr;
  Event deleted;
  Background background(hello_.Url(), [&] {
    DeleteBoth(*current);
    deleted.Set();
  });
  current = &background;
  ASSERT_TRUE(background.Start());
  EXPECT_TRUE(deleted.Wait());
  LetWorkerCatchUp();
  EXPECT_EQ(background.recorder.names(), std::vector<std::string>{kReturned});
}

TEST_P(DeletionTest, InsideTheNotificationOfAFailure) {
  Background* current = nullptr;
  Event deleted;
  Background background("none:", [&] {
    DeleteBoth(*current);
    deleted.Set();
  });
  current = &background;
  ASSERT_TRUE(background.Start());
  EXPECT_TRUE(deleted.Wait());
  LetWorkerCatchUp();
  EXPECT_EQ(background.recorder.names(), std::vector<std::string>{kFailed});
}

TEST_P(DeletionTest, InsideAnotherDeliveryWaitsForAPostUnderWay) {
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

TEST_P(DeletionTest, OnTheWorkerDoesNotWaitForAPostUnderWay) {
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

TEST_P(DeletionTest, AfterTheEnd) {
  Background background(hello_.Url());
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  DeleteBoth(background);
  LetWorkerCatchUp();
  EXPECT_EQ(background.recorder.entries().size(), 1U);
}

TEST_P(DeletionTest, FromTwoThreadsAtTheSameTime) {
  for (int i = 0; i < 50; ++i) {
    Background background(hello_.Url());
    ASSERT_TRUE(background.Start());
    std::thread other([&background] { background.delegate.reset(); });
    background.transport.reset();
    other.join();
    const std::size_t posted = background.recorder.entries().size();
    LetWorkerCatchUp();
    EXPECT_EQ(background.recorder.entries().size(), posted);
  }
}

TEST_P(DeletionTest, OfManyStalledTransfersIsQuick) {
  constexpr std::size_t kCount = 300;
  const RawServer server(Silence());
  std::vector<std::unique_ptr<Background>> all;
  for (std::size_t i = 0; i < kCount; ++i) {
    all.push_back(std::make_unique<Background>(server.Url()));
    ASSERT_TRUE(all.back()->Start());
  }
  ASSERT_TRUE(server.WaitForRequests(1));
  const auto begin = Clock::now();
  for (const auto& each : all) DeleteBoth(*each);
  EXPECT_LT(Clock::now() - begin, kSoon);
  EXPECT_TRUE(server.WaitUntilUnused());
  LetWorkerCatchUp();
  for (const auto& each : all) EXPECT_TRUE(each->recorder.entries().empty());
}

TEST_F(BackgroundTest, DeletingATransportKeepsOtherTransfersOfItsDelegate) {
  const RawServer silent(Silence());
  Background background(hello_.Url());
  auto doomed = std::make_unique<InternetData>(Text(silent.Url()));
  ASSERT_TRUE(doomed->DownloadWithDelegate(background.delegate.get(), nullptr));
  ASSERT_TRUE(silent.WaitForRequests(1));
  doomed.reset();
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  LetWorkerCatchUp();
  EXPECT_EQ(background.recorder.entries().size(), 1U);
}

TEST_F(BackgroundTest, TransportIsUsableAfterItsDelegateIsDeleted) {
  const RawServer silent(Silence());
  InternetData transport(Text(hello_.Url()));
  auto doomed = MakeDelegate();
  ASSERT_TRUE(transport.DownloadWithDelegate(doomed.get(), nullptr));
  doomed.reset();
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(BodyOf(transport), "hello");
}

TEST_F(BackgroundTest, TransfersOfSeveralThreadsEachEndOnce) {
  constexpr int kThreads = 4;
  constexpr std::size_t kEach = 50;
  Background background(hello_.Url());
  std::vector<std::thread> threads;
  std::vector<std::vector<std::unique_ptr<InternetData>>> transports(kThreads);
  for (auto& own : transports) {
    threads.emplace_back([&own, &background, this] {
      for (std::size_t i = 0; i < kEach; ++i) {
        own.push_back(std::make_unique<InternetData>(Text(hello_.Url())));
        EXPECT_TRUE(own.back()->DownloadWithDelegate(background.delegate.get(), nullptr));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(background.recorder.WaitFor(kThreads * kEach));
  LetWorkerCatchUp();
  EXPECT_EQ(background.recorder.entries().size(), kThreads * kEach);
  for (const auto& own : transports) {
    for (const auto& transport : own) EXPECT_EQ(BodyOf(*transport), "hello");
  }
}

}  // namespace
}  // namespace stowra_test

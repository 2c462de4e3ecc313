// SPDX-License-Identifier: MIT
// The end of background transfers, and what may happen to transports and delegates meanwhile.

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

class BackgroundEndTest : public TransportTest {
 protected:
  const RawServer hello_{Always(Response(200, "hello"))};
};

TEST_F(BackgroundEndTest, SecondTransferReplacesTheFirst) {
  static constexpr char kFirst[] = "BackgroundEndTestFirst";
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

TEST_F(BackgroundEndTest, SynchronousTransferReplacesABackgroundOne) {
  const RawServer server(Silence());
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(server.WaitForRequests(1));
  EXPECT_TRUE(Post(hello_.Url(), *background.transport));
  EXPECT_EQ(BodyOf(*background.transport), "hello");
  EXPECT_TRUE(server.WaitUntilUnused());
  EXPECT_EQ(background.CountPosts(), 0U);
  EXPECT_EQ(BodyOf(*background.transport), "hello");
}

TEST_F(BackgroundEndTest, TransportCanBeUsedAgainInsideItsNotification) {
  int ends = 0;
  Background* current = nullptr;
  Background background(hello_.Url(), [&] {
    if (++ends < 3 && !current->Start()) ADD_FAILURE();
  });
  current = &background;
  ASSERT_TRUE(background.Start());
  EXPECT_TRUE(background.recorder.WaitFor(3));
}

TEST_F(BackgroundEndTest, ThrowingObserverDoesNotEndTheThread) {
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

TEST_F(BackgroundEndTest, DeletingATransportKeepsOtherTransfersOfItsDelegate) {
  const RawServer silent(Silence());
  Background background(hello_.Url());
  auto doomed = std::make_unique<InternetData>(Text(silent.Url()));
  ASSERT_TRUE(doomed->DownloadWithDelegate(background.delegate.get(), nullptr));
  ASSERT_TRUE(silent.WaitForRequests(1));
  doomed.reset();
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(background.CountPosts(), 1U);
}

TEST_F(BackgroundEndTest, TransportIsUsableAfterItsDelegateIsDeleted) {
  const RawServer silent(Silence());
  InternetData transport(Text(hello_.Url()));
  auto doomed = MakeDelegate();
  ASSERT_TRUE(transport.DownloadWithDelegate(doomed.get(), nullptr));
  doomed.reset();
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(BodyOf(transport), "hello");
}

TEST_F(BackgroundEndTest, TransfersOfSeveralThreadsEachEndOnce) {
  constexpr int kThreads = 4;
  constexpr std::size_t kEach = 50;
  Background background(hello_.Url());
  std::vector<std::thread> threads;
  std::vector<std::deque<InternetData>> transports(kThreads);
  for (auto& own : transports) {
    threads.emplace_back([&own, &background, this] {
      for (std::size_t i = 0; i < kEach; ++i) {
        own.emplace_back(Text(hello_.Url()));
        EXPECT_TRUE(own.back().DownloadWithDelegate(background.delegate.get(), nullptr));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(background.recorder.WaitFor(kThreads * kEach));
  EXPECT_EQ(background.CountPosts(), kThreads * kEach);
  for (const auto& own : transports) {
    for (const auto& transport : own) EXPECT_EQ(BodyOf(transport), "hello");
  }
}

}  // namespace
}  // namespace stowra_test

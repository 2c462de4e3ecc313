// SPDX-License-Identifier: MIT
// The start and the end of background transfers, and those that wait for their turn.

#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "common_stowraapi/platform/http/background_worker.h"
#include "common_stowraapi/platform/memory_sink.h"
#include "tests/faults/ask.h"
#include "tests/platform/http/handlers.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

using ovrant::internet::BackgroundWorker;
using ovrant::internet::MemorySink;

class BackgroundTest : public TransportTest {
 protected:
  // Starts `count` transfers of `url` with the delegate of `background`.
  void StartMany(std::size_t count, const std::string& url, const Background& background) {
    for (std::size_t i = 0; i < count; ++i) {
      transports_.emplace_back(Text(url));
      ASSERT_TRUE(transports_.back().DownloadWithDelegate(background.delegate.get(), nullptr));
    }
  }

  const RawServer hello_{Always(Response(200, "hello"))};
  std::deque<InternetData> transports_;
};

TEST_F(BackgroundTest, ReturnsAtOnceAndPostsOneName) {
  Event answer;
  const RawServer server(AnswerAfter(answer, Response(200, "hello")));
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(server.WaitForRequests(1));
  EXPECT_TRUE(background.recorder.entries().empty());
  answer.Set();
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(background.transport->status_code(), 200);
  EXPECT_EQ(BodyOf(*background.transport), "hello");
  EXPECT_EQ(background.CountPosts(), 1U);
}

TEST_F(BackgroundTest, PayloadIsTheContextAndNotTheUserData) {
  int object = 0;
  int user_data = 0;
  for (int* const context : {&object, static_cast<int*>(nullptr)}) {
    for (const std::string& url : {hello_.Url(), std::string("none:")}) {
      Background background(url);
      background.delegate = MakeDelegate(context);
      ASSERT_TRUE(
          background.transport->DownloadWithDelegate(background.delegate.get(), &user_data));
      EXPECT_EQ(background.WaitForEnd(), url == "none:" ? kFailed : kReturned);
      EXPECT_EQ(background.recorder.entries().at(0).payload, context);
    }
  }
}

TEST_F(BackgroundTest, StartsNothingWithoutDelegateSourceOrSink) {
  Background background(hello_.Url());
  InternetData& transport = *background.transport;
  InternetDataDelegate* const delegate = background.delegate.get();
  const auto sink = std::make_shared<MemorySink>();
  EXPECT_FALSE(transport.DownloadWithDelegate(nullptr, nullptr));
  EXPECT_FALSE(transport.UploadWithDelegate(nullptr, nullptr));
  EXPECT_FALSE(transport.DownloadToWithDelegate(sink, nullptr, nullptr));
  EXPECT_FALSE(transport.DownloadToWithDelegate(nullptr, delegate, nullptr));
  EXPECT_FALSE(transport.UploadFromWithDelegate(nullptr, delegate, nullptr));
  EXPECT_EQ(sink.use_count(), 1);
  EXPECT_EQ(background.CountPosts(), 0U);
  EXPECT_EQ(hello_.connections(), 0);
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
  StartMany(kCount, server.Url(), background);
  EXPECT_TRUE(background.recorder.WaitFor(kCount));
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
  EXPECT_TRUE(server.WaitUntilOpen(1));
  LetWorkerCatchUp();
  EXPECT_TRUE(first_recorder.entries().empty());
}

TEST_F(BackgroundTest, SynchronousTransferReplacesABackgroundOne) {
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

TEST_F(BackgroundTest, TransportCanBeUsedAgainInsideItsNotification) {
  int ends = 0;
  Background background(hello_.Url(), [&] {
    if (++ends < 3 && !background.Start()) ADD_FAILURE();
  });
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
  EXPECT_EQ(Ask(Way::kDownloadWithDelegate, hello_.Url(), ""), Received(200, "hello"));
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
  EXPECT_EQ(background.CountPosts(), 1U);
}

TEST_F(BackgroundTest, TransportIsUsableAfterItsDelegateIsDeleted) {
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

// As many transfers as may run at once are stalled, so all others wait.
class WaitingTest : public BackgroundTest {
 protected:
  void SetUp() override {
    StartMany(BackgroundWorker::kMaxActive, server_.Url(), stalled_);
    ASSERT_TRUE(server_.WaitForRequests(BackgroundWorker::kMaxActive));
  }

 private:
  const RawServer server_{Silence()};
  const Background stalled_{""};
};

TEST_F(WaitingTest, BeginsWhenAnotherTransferEnds) {
  Background next(hello_.Url());
  ASSERT_TRUE(next.Start());
  EXPECT_EQ(hello_.connections(), 0);
  transports_.pop_back();
  EXPECT_EQ(next.WaitForEnd(), kReturned);
}

TEST_F(WaitingTest, DeletedTransportFreesItsTransferAtOnce) {
  const auto sink = std::make_shared<MemorySink>();
  Background waiting("none:");
  ASSERT_TRUE(waiting.transport->DownloadToWithDelegate(sink, waiting.delegate.get(), nullptr));
  EXPECT_GT(sink.use_count(), 1);
  waiting.transport.reset();
  EXPECT_EQ(sink.use_count(), 1);
}

}  // namespace
}  // namespace stowra_test

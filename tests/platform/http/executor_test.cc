// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

// Queues completions as a host's main loop does.
class Queue {
 public:
  void Push(std::function<void()> work) {
    const std::lock_guard<std::mutex> lock(mutex_);
    works_.push_back(std::move(work));
    changed_.notify_all();
  }

  // Takes the next completion. Empty when none comes within kPatience.
  std::function<void()> Take() {
    std::unique_lock<std::mutex> lock(mutex_);
    if (!changed_.wait_for(lock, kPatience, [this] { return !works_.empty(); })) return nullptr;
    auto work = std::move(works_.front());
    works_.pop_front();
    return work;
  }

  bool IsEmpty() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return works_.empty();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> works_;
};

class ExecutorTest : public TransportTest {
 protected:
  ExecutorTest() {
    InternetData::SetCompletionExecutor(
        [this](std::function<void()> work) { queue_.Push(std::move(work)); });
  }
  ~ExecutorTest() override { InternetData::SetCompletionExecutor(nullptr); }

  // Starts `background` and takes its completion.
  std::function<void()> StartAndTake(Background& background) {
    EXPECT_TRUE(background.Start());
    auto completion = queue_.Take();
    EXPECT_TRUE(completion);
    return completion;
  }

  const RawServer server_{Always(Response(200, "hello"))};
  Queue queue_;
};

TEST_F(ExecutorTest, CompletionPostsOnTheThreadThatRunsIt) {
  Background background(server_.Url());
  const auto completion = StartAndTake(background);
  EXPECT_TRUE(background.recorder.entries().empty());
  completion();
  const auto entries = background.recorder.entries();
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].name, kReturned);
  EXPECT_EQ(entries[0].thread, std::this_thread::get_id());
  EXPECT_EQ(BodyOf(*background.transport), "hello");
}

TEST_F(ExecutorTest, CompletesFailuresToo) {
  Background background("none:");
  StartAndTake(background)();
  EXPECT_EQ(background.recorder.names(), std::vector<std::string>{kFailed});
}

TEST_F(ExecutorTest, ResponseAppearsJustBeforeThePost) {
  Background background(server_.Url());
  const auto completion = StartAndTake(background);
  ExpectFailureState(*background.transport);
  completion();
  EXPECT_EQ(background.transport->status_code(), 200);
}

TEST_F(ExecutorTest, ResponseIsReadableInsideTheNotification) {
  std::string body;
  Background* current = nullptr;
  Background background(server_.Url(), [&] { body = BodyOf(*current->transport); });
  current = &background;
  StartAndTake(background)();
  EXPECT_EQ(body, "hello");
}

TEST_F(ExecutorTest, SecondRunOfACompletionDoesNothing) {
  Background background(server_.Url());
  const auto completion = StartAndTake(background);
  const auto copy = completion;
  completion();
  completion();
  copy();
  EXPECT_EQ(background.recorder.entries().size(), 1U);
}

TEST_F(ExecutorTest, CompletionPostsNothingAfterBothAreDeleted) {
  Background background(server_.Url());
  const auto completion = StartAndTake(background);
  background.delegate.reset();
  background.transport.reset();
  completion();
  EXPECT_TRUE(background.recorder.entries().empty());
}

TEST_F(ExecutorTest, CompletionPostsNothingAfterTheDelegateIsDeleted) {
  Background background(server_.Url());
  const auto completion = StartAndTake(background);
  background.delegate.reset();
  completion();
  EXPECT_TRUE(background.recorder.entries().empty());
}

TEST_F(ExecutorTest, CompletionPostsNothingAfterTheTransportIsDeleted) {
  Background background(server_.Url());
  const auto completion = StartAndTake(background);
  background.transport.reset();
  completion();
  EXPECT_TRUE(background.recorder.entries().empty());
}

TEST_F(ExecutorTest, CompletionOfAReplacedTransferPostsNothing) {
  Background background(server_.Url());
  const auto first = StartAndTake(background);
  const auto second = StartAndTake(background);
  first();
  EXPECT_TRUE(background.recorder.entries().empty());
  ExpectFailureState(*background.transport);
  second();
  EXPECT_EQ(background.recorder.entries().size(), 1U);
  EXPECT_EQ(BodyOf(*background.transport), "hello");
}

TEST_F(ExecutorTest, CompletionMayBeDestroyedWhileItRuns) {
  std::function<void()> completion;
  Background* current = nullptr;
  Background background(server_.Url(), [&] {
    completion = nullptr;
    EXPECT_EQ(BodyOf(*current->transport), "hello");
  });
  current = &background;
  completion = StartAndTake(background);
  completion();
  EXPECT_FALSE(completion);
  EXPECT_EQ(background.recorder.names(), std::vector<std::string>{kReturned});
}

TEST_F(ExecutorTest, EverythingMayBeDestroyedWhileACompletionRuns) {
  std::function<void()> completion;
  Background* current = nullptr;
  Background background(server_.Url(), [&] {
    completion = nullptr;
    current->transport.reset();
    current->delegate.reset();
  });
  current = &background;
  completion = StartAndTake(background);
  completion();
  EXPECT_EQ(background.recorder.names(), std::vector<std::string>{kReturned});
}

TEST_F(ExecutorTest, CompletionMayRunInsideItself) {
  std::function<void()> completion;
  Background background(server_.Url(), [&] { completion(); });
  completion = StartAndTake(background);
  completion();
  EXPECT_EQ(background.recorder.entries().size(), 1U);
}

TEST_F(ExecutorTest, CompletionMayBeDestroyedUnrun) {
  Background background(server_.Url());
  { const auto dropped = StartAndTake(background); }
  background.transport.reset();
  background.delegate.reset();
  EXPECT_TRUE(background.recorder.entries().empty());
}

TEST_F(ExecutorTest, DeletionWaitsForACompletionThatRunsOnAnotherThread) {
  Event entered;
  Event deleted;
  std::atomic<bool> returned_too_early{false};
  Background background(server_.Url(), [&] {
    entered.Set();
    returned_too_early = deleted.Wait(std::chrono::milliseconds(100));
  });
  auto completion = StartAndTake(background);
  std::thread runner([&completion] { completion(); });
  EXPECT_TRUE(entered.Wait());
  background.delegate.reset();
  background.transport.reset();
  deleted.Set();
  runner.join();
  EXPECT_FALSE(returned_too_early);
}

TEST_F(ExecutorTest, EmptyFunctionRestoresTheDefault) {
  InternetData::SetCompletionExecutor(nullptr);
  Background background(server_.Url());
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_TRUE(queue_.IsEmpty());
  EXPECT_NE(background.recorder.entries().at(0).thread, std::this_thread::get_id());
}

TEST_F(ExecutorTest, IsReadWhenATransferEnds) {
  Event answer;
  const RawServer server([&answer](const RawRequest&, RawConnection& connection) {
    EXPECT_TRUE(answer.Wait());
    connection.Write(Response(200, "hello"));
  });
  InternetData::SetCompletionExecutor(nullptr);
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(server.WaitForRequests(1));
  InternetData::SetCompletionExecutor(
      [this](std::function<void()> work) { queue_.Push(std::move(work)); });
  answer.Set();
  const auto completion = queue_.Take();
  ASSERT_TRUE(completion);
  completion();
  EXPECT_EQ(background.recorder.names(), std::vector<std::string>{kReturned});
}

TEST_F(ExecutorTest, MayRunTheCompletionItself) {
  InternetData::SetCompletionExecutor([](std::function<void()> work) { work(); });
  Background background(server_.Url());
  ASSERT_TRUE(background.Start());
  EXPECT_EQ(background.WaitForEnd(), kReturned);
}

TEST_F(ExecutorTest, IsNotUsedForSynchronousTransfers) {
  InternetData transport(Text(server_.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_TRUE(queue_.IsEmpty());
}

TEST_F(ExecutorTest, ReplacementWaitsForACallOnAnotherThread) {
  Event entered;
  Event replaced;
  std::atomic<bool> returned_too_early{false};
  InternetData::SetCompletionExecutor([&](const std::function<void()>& work) {
    entered.Set();
    returned_too_early = replaced.Wait(std::chrono::milliseconds(100));
    work();
  });
  Background background(server_.Url());
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(entered.Wait());
  InternetData::SetCompletionExecutor(nullptr);
  replaced.Set();
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_FALSE(returned_too_early);
}

TEST_F(ExecutorTest, NotificationMayStartTheNextTransfer) {
  int starts = 1;
  Background* current = nullptr;
  Background background(server_.Url(), [&] { EXPECT_TRUE(++starts > 3 || current->Start()); });
  current = &background;
  ASSERT_TRUE(background.Start());
  for (int i = 0; i < 3; ++i) {
    const auto completion = queue_.Take();
    ASSERT_TRUE(completion);
    completion();
  }
  EXPECT_EQ(background.recorder.entries().size(), 3U);
}

}  // namespace
}  // namespace stowra_test

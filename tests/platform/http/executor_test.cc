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

#include "tests/platform/http/handlers.h"
#include "tests/platform/http/transport_fixture.h"

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
  ExecutorTest() { SetQueue(); }
  ~ExecutorTest() override { InternetData::SetCompletionExecutor(nullptr); }

  void SetQueue() {
    InternetData::SetCompletionExecutor(
        [this](std::function<void()> work) { queue_.Push(std::move(work)); });
  }

  std::function<void()> Take() {
    auto completion = queue_.Take();
    EXPECT_TRUE(completion);
    return completion;
  }

  // Starts a transfer and takes its completion.
  std::function<void()> StartAndTake(Background& background) {
    EXPECT_TRUE(background.Start());
    return Take();
  }
  std::function<void()> StartAndTake() { return StartAndTake(background_); }

  std::size_t CountPosts() { return background_.recorder.entries().size(); }

  const RawServer server_{Always(Response(200, "hello"))};
  Queue queue_;
  std::function<void()> on_post_ = [] {};
  Background background_{server_.Url(), [this] { on_post_(); }};
};

TEST_F(ExecutorTest, CompletionPostsOnTheThreadThatRunsIt) {
  const auto completion = StartAndTake();
  EXPECT_EQ(CountPosts(), 0U);
  completion();
  const auto entries = background_.recorder.entries();
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].name, kReturned);
  EXPECT_EQ(entries[0].thread, std::this_thread::get_id());
  EXPECT_EQ(BodyOf(*background_.transport), "hello");
}

TEST_F(ExecutorTest, CompletesFailuresToo) {
  Background background("none:");
  StartAndTake(background)();
  EXPECT_EQ(background.recorder.names(), std::vector<std::string>{kFailed});
}

TEST_F(ExecutorTest, ResponseAppearsJustBeforeThePost) {
  std::string body;
  on_post_ = [&] { body = BodyOf(*background_.transport); };
  const auto completion = StartAndTake();
  ExpectFailureState(*background_.transport);
  completion();
  EXPECT_EQ(background_.transport->status_code(), 200);
  EXPECT_EQ(body, "hello");
}

TEST_F(ExecutorTest, SecondRunOfACompletionDoesNothing) {
  const auto completion = StartAndTake();
  const auto copy = completion;
  completion();
  completion();
  copy();
  EXPECT_EQ(CountPosts(), 1U);
}

TEST_F(ExecutorTest, CompletionPostsNothingAfterADeletion) {
  constexpr struct {
    bool delegate, transport;
  } kDeleted[] = {{true, true}, {true, false}, {false, true}};
  for (const auto& deleted : kDeleted) {
    Background background(server_.Url());
    const auto completion = StartAndTake(background);
    if (deleted.delegate) background.delegate.reset();
    if (deleted.transport) background.transport.reset();
    completion();
    EXPECT_TRUE(background.recorder.entries().empty())
        << (deleted.delegate ? "delegate " : "") << (deleted.transport ? "transport" : "");
  }
}

TEST_F(ExecutorTest, CompletionOfAReplacedTransferPostsNothing) {
  const auto first = StartAndTake();
  const auto second = StartAndTake();
  first();
  EXPECT_EQ(CountPosts(), 0U);
  ExpectFailureState(*background_.transport);
  second();
  EXPECT_EQ(CountPosts(), 1U);
  EXPECT_EQ(BodyOf(*background_.transport), "hello");
}

TEST_F(ExecutorTest, EverythingMayBeDestroyedWhileACompletionRuns) {
  std::function<void()> completion = StartAndTake();
  on_post_ = [&] {
    completion = nullptr;
    background_.transport.reset();
    background_.delegate.reset();
  };
  completion();
  EXPECT_EQ(background_.recorder.names(), std::vector<std::string>{kReturned});
}

TEST_F(ExecutorTest, CompletionMayRunInsideItself) {
  const auto completion = StartAndTake();
  on_post_ = completion;
  completion();
  EXPECT_EQ(CountPosts(), 1U);
}

TEST_F(ExecutorTest, CompletionMayBeDestroyedUnrun) {
  StartAndTake();
  background_.transport.reset();
  background_.delegate.reset();
  EXPECT_EQ(CountPosts(), 0U);
}

TEST_F(ExecutorTest, DeletionWaitsForACompletionThatRunsOnAnotherThread) {
  Event entered;
  Event deleted;
  std::atomic<bool> returned_too_early{false};
  on_post_ = [&] {
    entered.Set();
    returned_too_early = deleted.Wait(std::chrono::milliseconds(100));
  };
  std::thread runner(StartAndTake());
  EXPECT_TRUE(entered.Wait());
  background_.delegate.reset();
  background_.transport.reset();
  deleted.Set();
  runner.join();
  EXPECT_FALSE(returned_too_early);
}

TEST_F(ExecutorTest, EmptyFunctionRestoresTheDefault) {
  InternetData::SetCompletionExecutor(nullptr);
  ASSERT_TRUE(background_.Start());
  EXPECT_EQ(background_.WaitForEnd(), kReturned);
  EXPECT_TRUE(queue_.IsEmpty());
  EXPECT_NE(background_.recorder.entries().at(0).thread, std::this_thread::get_id());
}

TEST_F(ExecutorTest, IsReadWhenATransferEnds) {
  Event answer;
  const RawServer server(AnswerAfter(answer, Response(200, "hello")));
  InternetData::SetCompletionExecutor(nullptr);
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(server.WaitForRequests(1));
  SetQueue();
  answer.Set();
  Take()();
  EXPECT_EQ(background.recorder.names(), std::vector<std::string>{kReturned});
}

TEST_F(ExecutorTest, MayRunTheCompletionItself) {
  InternetData::SetCompletionExecutor([](std::function<void()> work) { work(); });
  ASSERT_TRUE(background_.Start());
  EXPECT_EQ(background_.WaitForEnd(), kReturned);
}

TEST_F(ExecutorTest, IsNotUsedForSynchronousTransfers) {
  EXPECT_TRUE(background_.transport->Download());
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
  ASSERT_TRUE(background_.Start());
  ASSERT_TRUE(entered.Wait());
  InternetData::SetCompletionExecutor(nullptr);
  replaced.Set();
  EXPECT_EQ(background_.WaitForEnd(), kReturned);
  EXPECT_FALSE(returned_too_early);
}

TEST_F(ExecutorTest, NotificationMayStartTheNextTransfer) {
  int starts = 1;
  on_post_ = [&] { EXPECT_TRUE(++starts > 3 || background_.Start()); };
  ASSERT_TRUE(background_.Start());
  for (int i = 0; i < 3; ++i) Take()();
  EXPECT_EQ(CountPosts(), 3U);
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
// The start of background transfers.

#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <string>
#include <vector>

#include "common_stowraapi/platform/http/background_worker.h"
#include "tests/platform/http/handlers.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

class BackgroundStartTest : public TransportTest {
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

TEST_F(BackgroundStartTest, ReturnsAtOnceAndPostsOneName) {
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

TEST_F(BackgroundStartTest, PayloadIsTheContextPointer) {
  int context = 0;
  for (const std::string& url : {hello_.Url(), std::string("none:")}) {
    Background background(url);
    background.delegate = MakeDelegate(&context);
    ASSERT_TRUE(background.Start());
    EXPECT_EQ(background.WaitForEnd(), url == "none:" ? kFailed : kReturned);
    EXPECT_EQ(background.recorder.entries().at(0).payload, &context);
  }
}

TEST_F(BackgroundStartTest, UserDataIsNotUsed) {
  int user_data = 0;
  Background background(hello_.Url());
  ASSERT_TRUE(background.transport->DownloadWithDelegate(background.delegate.get(), &user_data));
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(background.recorder.entries().at(0).payload, nullptr);
}

TEST_F(BackgroundStartTest, StartsNothingWithoutADelegate) {
  InternetData transport(Text(hello_.Url()));
  EXPECT_FALSE(transport.DownloadWithDelegate(nullptr, nullptr));
  EXPECT_FALSE(transport.UploadWithDelegate(nullptr, nullptr));
  LetWorkerCatchUp();
  EXPECT_EQ(hello_.connections(), 0);
}

TEST_F(BackgroundStartTest, PostsTheNamesOfTheDelegate) {
  static constexpr char kOwnReturned[] = "BackgroundStartTestOwnReturned";
  static constexpr char kOwnFailed[] = "BackgroundStartTestOwnFailed";
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

TEST_F(BackgroundStartTest, OneDelegateServesSeveralTransfers) {
  Background background(hello_.Url());
  StartMany(5, hello_.Url(), background);
  EXPECT_TRUE(background.recorder.WaitFor(5));
}

TEST_F(BackgroundStartTest, TransfersRunAtTheSameTime) {
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

TEST_F(BackgroundStartTest, TransfersBeyondTheLimitWaitForTheirTurn) {
  constexpr std::size_t kLimit = ovrant::internet::BackgroundWorker::kMaxActive;
  const RawServer server(Silence());
  const Background stalled("");
  StartMany(kLimit, server.Url(), stalled);
  ASSERT_TRUE(server.WaitForRequests(kLimit));
  Background next(hello_.Url());
  ASSERT_TRUE(next.Start());
  EXPECT_EQ(hello_.connections(), 0);
  transports_.pop_back();
  EXPECT_EQ(next.WaitForEnd(), kReturned);
}

}  // namespace
}  // namespace stowra_test

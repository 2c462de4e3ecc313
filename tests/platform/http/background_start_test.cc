// SPDX-License-Identifier: MIT
// The start of background transfers.

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "common_stowraapi/platform/http/background_worker.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

class BackgroundStartTest : public TransportTest {
 protected:
  const RawServer hello_{Always(Response(200, "hello"))};
};

TEST_F(BackgroundStartTest, ReturnsAtOnceAndPostsOneName) {
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
  LetWorkerCatchUp();
  EXPECT_EQ(background.recorder.names(), std::vector<std::string>{kReturned});
}

TEST_F(BackgroundStartTest, PayloadIsTheContextPointer) {
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
  std::vector<std::unique_ptr<InternetData>> transports;
  for (int i = 0; i < 5; ++i) {
    transports.push_back(std::make_unique<InternetData>(Text(hello_.Url())));
    ASSERT_TRUE(transports.back()->DownloadWithDelegate(background.delegate.get(), nullptr));
  }
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
  std::vector<std::unique_ptr<InternetData>> transports;
  for (int i = 0; i < kCount; ++i) {
    transports.push_back(std::make_unique<InternetData>(Text(server.Url())));
    ASSERT_TRUE(transports.back()->DownloadWithDelegate(background.delegate.get(), nullptr));
  }
  EXPECT_TRUE(background.recorder.WaitFor(kCount));
}

TEST_F(BackgroundStartTest, TransfersBeyondTheLimitWaitForTheirTurn) {
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

}  // namespace
}  // namespace stowra_test

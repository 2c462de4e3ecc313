// SPDX-License-Identifier: MIT
// Deletion of transport or delegate while the host's source or sink is called.

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>

#include "tests/platform/http/body_fixture.h"
#include "tests/platform/http/deletion_fixture.h"
#include "tests/platform/http/handlers.h"

namespace stowra_test {
namespace {

bool Start(const Background& background, const std::shared_ptr<BodySink>& sink) {
  return background.transport->DownloadToWithDelegate(sink, background.delegate.get(), nullptr);
}
bool Start(const Background& background, const std::shared_ptr<BodySource>& source) {
  return background.transport->UploadFromWithDelegate(source, background.delegate.get(), nullptr);
}

class BodyDeletionTest : public DeletionFixture {
 protected:
  // Nothing is posted, and the transport's thread lets go of the object soon.
  template <typename T>
  static void ExpectDropped(Background& background, const std::shared_ptr<T>& object) {
    EXPECT_EQ(background.CountPosts(), 0U);
    EXPECT_EQ(object.use_count(), 1);
  }

  const RawServer endless_{Endless("HTTP/1.1 200 OK\r\n\r\n")};
};

IN_BOTH_ORDERS(BodyDeletionTest);

TEST_P(BodyDeletionTest, InsideWriteEndsTheDownload) {
  Background background(endless_.Url());
  const auto sink = std::make_shared<TestSink>();
  Event deleted;
  std::atomic<int> writes{0};
  sink->on_write = [&] {
    if (++writes == 1) DeleteBoth(background);
    deleted.Set();
  };
  ASSERT_TRUE(Start(background, sink));
  ASSERT_TRUE(deleted.Wait());
  EXPECT_TRUE(endless_.WaitUntilUnused());
  ExpectDropped(background, sink);
  EXPECT_EQ(writes, 1);
}

TEST_P(BodyDeletionTest, InsideReadEndsTheUpload) {
  Background background(hello_.Url());
  const auto source = std::make_shared<TestSource>(std::string(1000000, 'x'));
  source->piece = 1000;
  Event deleted;
  std::atomic<int> reads{0};
  source->on_read = [&] {
    if (++reads == 1) DeleteBoth(background);
    deleted.Set();
  };
  ASSERT_TRUE(Start(background, source));
  ASSERT_TRUE(deleted.Wait());
  EXPECT_TRUE(hello_.WaitUntilUnused());
  ExpectDropped(background, source);
  EXPECT_EQ(reads, 1);
}

// The destructor waits for the call, and no other call follows.
TEST_P(BodyDeletionTest, WaitsForAWriteOnTheOtherThread) {
  Background background(endless_.Url());
  const auto sink = std::make_shared<TestSink>();
  Event entered;
  std::atomic<bool> is_writing{false};
  std::atomic<int> writes{0};
  sink->on_write = [&] {
    ++writes;
    is_writing = true;
    entered.Set();
    Event().Wait(std::chrono::milliseconds(200));
    is_writing = false;
  };
  ASSERT_TRUE(Start(background, sink));
  ASSERT_TRUE(entered.Wait());
  DeleteFirst(background);
  EXPECT_FALSE(is_writing);
  const int writes_before = writes;
  EXPECT_TRUE(endless_.WaitUntilUnused());
  ExpectDropped(background, sink);
  EXPECT_EQ(writes, writes_before);
}

TEST_P(BodyDeletionTest, InsideEndPostsNothing) {
  Background background(hello_.Url());
  const auto sink = std::make_shared<TestSink>();
  Event deleted;
  sink->on_end = [&] {
    DeleteBoth(background);
    deleted.Set();
  };
  ASSERT_TRUE(Start(background, sink));
  ASSERT_TRUE(deleted.Wait());
  ExpectDropped(background, sink);
}

// The last owner may be the library.
TEST_P(BodyDeletionTest, LeavesTheSinkToTheLibrary) {
  Background background(endless_.Url());
  auto sink = std::make_shared<TestSink>();
  const std::weak_ptr<TestSink> watch = sink;
  Event written;
  sink->on_write = [&written] { written.Set(); };
  ASSERT_TRUE(Start(background, sink));
  sink.reset();
  ASSERT_TRUE(written.Wait());
  EXPECT_FALSE(watch.expired());
  DeleteBoth(background);
  LetWorkerCatchUp();
  EXPECT_TRUE(watch.expired());
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "common_stowraapi/platform/notification_center.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

using Kind = TransferEvent::Kind;

class ListenerTest : public TransportTest, protected EventRecorder {
 protected:
  ListenerTest() { Listen(); }

  // Expects one start, then only progress, then one end. Gives the error text of the end.
  std::string ErrorOfTheOneTransfer(const std::string& url) {
    const auto told = events();
    if (told.size() < 2) {
      ADD_FAILURE() << "only " << told.size() << " events";
      return "(none)";
    }
    for (const Told& each : told) {
      const Kind expected = &each == &told.front()  ? Kind::kStarted
                            : &each == &told.back() ? Kind::kEnded
                                                    : Kind::kProgress;
      EXPECT_EQ(each.kind, expected);
      EXPECT_EQ(each.url, Text(url));
      EXPECT_TRUE(expected == Kind::kEnded || each.error.empty());
    }
    return told.back().error.utf8();
  }

  // Calls `replace` on this thread while the listener hears on another that a transfer starts.
  void ExpectToWait(const std::function<void()>& replace) const {
    Event entered;
    Event replaced;
    std::atomic<bool> returned_too_early{false};
    InternetData::SetTransferListener([&](const TransferEvent& event) {
      if (event.kind != Kind::kStarted) return;
      entered.Set();
      returned_too_early = replaced.Wait(std::chrono::milliseconds(100));
    });
    Background background(hello_.Url());
    ASSERT_TRUE(background.Start());
    ASSERT_TRUE(entered.Wait());
    replace();
    replaced.Set();
    EXPECT_EQ(background.WaitForEnd(), kReturned);
    EXPECT_FALSE(returned_too_early);
  }

  const RawServer hello_{Always(Response(200, "hello"))};
};

TEST_F(ListenerTest, HearsOfADownload) {
  const std::string body(300'000, 'x');
  const RawServer server(Always(Response(200, body)));
  EXPECT_TRUE(Fetch(server.Url("/a")).received);
  EXPECT_EQ(ErrorOfTheOneTransfer(server.Url("/a")), "");
  const auto told = events();
  ASSERT_GE(told.size(), 3U);
  EXPECT_EQ(told.front().status, 0);
  EXPECT_EQ(told.front().bytes_received, 0U);
  unsigned long before = 0;
  for (const Told& each : told) {
    EXPECT_GE(each.bytes_received, before);
    before = each.bytes_received;
    EXPECT_EQ(each.bytes_to_send, 0U);
    EXPECT_EQ(each.told_on, std::this_thread::get_id());
    if (each.kind == Kind::kProgress) {
      EXPECT_EQ(each.status, 200);
      EXPECT_EQ(each.bytes_expected, body.size());
    }
  }
  EXPECT_EQ(told.back().status, 200);
  EXPECT_EQ(told.back().bytes_received, body.size());
  EXPECT_EQ(told.back().bytes_expected, body.size());
}

TEST_F(ListenerTest, HearsOfABackgroundTransferOnItsThread) {
  const RawServer server(Always(Response(404, "hello")));
  Background background(server.Url());
  EXPECT_EQ(background.Run(), kReturned);
  EXPECT_EQ(ErrorOfTheOneTransfer(server.Url()), "");
  EXPECT_EQ(events().back().status, 404);
  const auto posting_thread = background.recorder.entries().at(0).thread;
  EXPECT_NE(posting_thread, std::this_thread::get_id());
  for (const Told& each : events()) EXPECT_EQ(each.told_on, posting_thread);
}

TEST_F(ListenerTest, HearsOfAnUpload) {
  const RawServer server(Always(Response(200, "")));
  InternetData transport(Text("none:"));
  SetSendData(std::string(kLargeBody, 'x'), transport);
  EXPECT_TRUE(Post(server.Url("/up"), transport));
  EXPECT_EQ(ErrorOfTheOneTransfer(server.Url("/up")), "");
  const auto told = events();
  bool seen_midway = false;
  unsigned long before = 0;
  for (const Told& each : told) {
    EXPECT_EQ(each.bytes_to_send, kLargeBody);
    EXPECT_GE(each.bytes_sent, before);
    before = each.bytes_sent;
    seen_midway = seen_midway || (before > 0 && before < kLargeBody);
  }
  EXPECT_TRUE(seen_midway);
  EXPECT_EQ(told.front().bytes_sent, 0U);
  EXPECT_EQ(told.back().bytes_sent, kLargeBody);
}

TEST_F(ListenerTest, IsReadWhenATransferStarts) {
  Event answer;
  const RawServer server(HelloAfter(answer));
  Background before(server.Url("/before"));
  InternetData::SetTransferListener(nullptr);
  ASSERT_TRUE(before.Start());
  ASSERT_TRUE(server.WaitForRequests(1));
  Listen();
  answer.Set();
  EXPECT_EQ(before.WaitForEnd(), kReturned);
  EXPECT_TRUE(events().empty());
}

TEST_F(ListenerTest, HearsNothingMoreAfterItsRemoval) {
  Event answer;
  const RawServer server(HelloAfter(answer));
  Background background(server.Url());
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(server.WaitForRequests(1));
  InternetData::SetTransferListener(nullptr);
  const std::size_t count = events().size();
  answer.Set();
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(events().size(), count);
}

TEST_F(ListenerTest, ReplacementWaitsForACallOnAnotherThread) {
  ExpectToWait([] { InternetData::SetTransferListener(nullptr); });
}

TEST_F(ListenerTest, ReplacementInsideADeliveryWaits) {
  static constexpr char kOther[] = "ListenerTestOther";
  ExpectToWait([] {
    const NotificationRecorder other({kOther}, [] { InternetData::SetTransferListener(nullptr); });
    CNotificationCenter::Default()->SendNotification(kOther, nullptr);
  });
}

TEST_F(ListenerTest, MayReplaceItself) {
  std::atomic<int> calls{0};
  InternetData::SetTransferListener([&calls](const TransferEvent&) {
    ++calls;
    InternetData::SetTransferListener(nullptr);
  });
  EXPECT_TRUE(Fetch(hello_.Url()).received);
  EXPECT_EQ(calls, 1);
}

TEST_F(ListenerTest, MayStartATransfer) {
  bool nested = false;
  bool nested_received = false;
  InternetData::SetTransferListener([&](const TransferEvent& event) {
    if (event.kind != Kind::kProgress || nested) return;
    nested = true;
    nested_received = Fetch(hello_.Url("/inner")).received;
  });
  EXPECT_TRUE(Fetch(hello_.Url("/outer")).received);
  EXPECT_TRUE(nested_received);
}

TEST_F(ListenerTest, MayDeleteTheTransportAndItsDelegate) {
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhello");
    connection.Stall();
  });
  Background background(server.Url());
  Event deleted;
  InternetData::SetTransferListener([&](const TransferEvent& event) {
    if (event.kind != Kind::kProgress) return;
    background.transport.reset();
    background.delegate.reset();
    deleted.Set();
  });
  ASSERT_TRUE(background.Start());
  EXPECT_TRUE(deleted.Wait());
  InternetData::SetTransferListener(nullptr);
  EXPECT_TRUE(server.WaitUntilUnused());
  LetWorkerCatchUp();
  EXPECT_TRUE(background.recorder.entries().empty());
}

TEST_F(ListenerTest, MayStartATransferWhileNothingElseHappens) {
  const RawServer silent(Silence());
  EXPECT_TRUE(FetchInBackground(hello_.Url()).received);
  Background stalled(silent.Url());
  Background started(hello_.Url());
  InternetData::SetTransferListener([&](const TransferEvent& event) {
    if (event.kind != Kind::kStarted || event.url != Text(silent.Url())) return;
    started.transport->DownloadWithDelegate(started.delegate.get(), nullptr);
  });
  ASSERT_TRUE(stalled.Start());
  EXPECT_EQ(started.WaitForEnd(), kReturned);
  EXPECT_EQ(BodyOf(*started.transport), "hello");
}

TEST_F(ListenerTest, HearsOfTransfersOnSeveralThreads) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] {
      for (int k = 0; k < 10; ++k) EXPECT_TRUE(Fetch(hello_.Url()).received);
    });
  }
  for (std::thread& thread : threads) thread.join();
  int starts = 0;
  int ends = 0;
  for (const Told& each : events()) {
    if (each.kind == Kind::kStarted) ++starts;
    if (each.kind == Kind::kEnded) ++ends;
  }
  EXPECT_EQ(starts, 40);
  EXPECT_EQ(ends, 40);
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
// The fields of a transfer's events.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "common_stowraapi/platform/http/background_worker.h"
#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/handlers.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

using Kind = TransferEvent::Kind;

class TransferEventTest : public TransportTest, protected EventRecorder {
 protected:
  TransferEventTest() { Listen(); }

  static void ExpectPlausible(const ovrant::internet::TransferTimes& times) {
    for (const double part :
         {times.queued, times.name, times.connect, times.tls, times.first_byte}) {
      EXPECT_GE(part, 0);
      EXPECT_LE(part, times.total);
    }
  }

  const RawServer hello_{Always(Response(200, "hello"))};
};

TEST_F(TransferEventTest, NumbersAreDistinctAndGrow) {
  unsigned long last = 0;
  for (const Way way : kAllWays) {
    for (const std::string& url : {hello_.Url(), std::string("none:")}) {
      Ask(way, url, "data");
      const auto events = TakeEvents();
      ASSERT_GE(events.size(), 2U);
      EXPECT_GT(events.front().number, last);
      last = events.front().number;
      for (const TransferEvent& event : events) EXPECT_EQ(event.number, last);
    }
  }
  EXPECT_GE(last, 8U);
}

TEST_F(TransferEventTest, MethodIsTheOneOfTheStart) {
  const RawServer server(Always(Redirect(303, hello_.Url())));
  for (const Way way : kAllWays) {
    Ask(way, server.Url(), "data");
    for (const TransferEvent& event : TakeEvents()) {
      EXPECT_STREQ(event.method, IsUpload(way) ? "POST" : "GET");
    }
  }
}

TEST_F(TransferEventTest, ContextIsTheOneOfTheDelegate) {
  int context = 0;
  Background background(hello_.Url());
  background.delegate = MakeDelegate(&context);
  EXPECT_EQ(background.Run(), kReturned);
  for (const TransferEvent& event : TakeEvents()) EXPECT_EQ(event.context, &context);
  EXPECT_TRUE(background.transport->Download());
  const auto events = TakeEvents();
  EXPECT_GE(events.size(), 2U);
  for (const TransferEvent& event : events) EXPECT_EQ(event.context, nullptr);
}

TEST_F(TransferEventTest, StatusIsZeroUntilAResponseBegins) {
  const RawServer server(Always(Response(404, "hello")));
  for (const Way way : kAllWays) {
    Ask(way, server.Url(), "");
    for (const TransferEvent& event : TakeEvents()) {
      EXPECT_EQ(event.status, event.kind == Kind::kStarted ? 0 : 404);
    }
  }
}

TEST_F(TransferEventTest, EndCountsTheBytes) {
  const std::string text(500'000, 'x');
  const std::string gzip = Gzip(text);
  const std::string gzip_head = "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n";
  const std::string chunked_head = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  const struct {
    const char* name;
    std::string reply;
    TransferError reason;
    std::size_t received;
    std::size_t on_the_wire;
    std::size_t expected;
  } kReplies[] = {
      {"gzip", Response(200, gzip, kGzipHeader), TransferError::kNone, text.size(), gzip.size(),
       gzip.size()},
      {"gzip without length", gzip_head + gzip, TransferError::kNone, text.size(), gzip.size(), 0},
      {"chunks", chunked_head + "5\r\nhello\r\n0\r\n\r\n", TransferError::kNone, 5, 5, 0},
      {"cut off", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhello", TransferError::kCutOff, 5, 5,
       9},
  };
  for (const auto& reply : kReplies) {
    const RawServer server(AlwaysThenClose(reply.reply));
    for (const Way way : kAllWays) {
      SCOPED_TRACE(std::string(reply.name) + ", " + NameOf(way));
      Ask(way, server.Url(), "data");
      const TransferEvent end = TakeEvents().back();
      EXPECT_EQ(end.kind, Kind::kEnded);
      EXPECT_EQ(end.reason, reply.reason);
      EXPECT_EQ(end.status, 200);
      EXPECT_EQ(end.bytes_received, reply.received);
      EXPECT_EQ(end.wire_bytes_received, reply.on_the_wire);
      EXPECT_EQ(end.bytes_expected, reply.expected);
    }
  }
}

TEST_F(TransferEventTest, TimesAddUp) {
  constexpr std::chrono::milliseconds kPause(100);
  const RawServer server([kPause](const RawRequest& request, RawConnection& connection) {
    const std::string reply = request.target == "/" ? Redirect(302, "/to") : Response(200, "");
    connection.Drip(reply.substr(0, 1), kPause);
    connection.Write(reply.substr(1));
  });
  for (const Way way : kAllWays) {
    Ask(way, "http://localhost:" + std::to_string(server.port()) + "/", "data");
    const TransferEvent end = TakeEvents().back();
    EXPECT_EQ(end.reason, TransferError::kNone);
    ExpectPlausible(end.times);
    EXPECT_GT(end.times.name, 0);
    // Both replies began after the pause.
    EXPECT_GE(end.times.first_byte, 0.19);
    EXPECT_EQ(end.times.tls, 0);
  }
}

TEST_F(TransferEventTest, FailureHasTimesToo) {
  SetInactivityTimeout(0.2F);
  const RawServer server(Silence());
  Ask(Way::kDownload, server.Url(), "");
  const TransferEvent end = TakeEvents().back();
  ExpectPlausible(end.times);
  EXPECT_GE(end.times.total, 0.19);
}

TEST_F(TransferEventTest, QueuedTimeGrowsWhenAllPlacesAreTaken) {
  constexpr std::size_t kPlaces = ovrant::internet::BackgroundWorker::kMaxActive;
  constexpr std::chrono::milliseconds kPause(200);
  const RawServer silent(Silence());
  std::vector<std::unique_ptr<Background>> stalled;
  for (std::size_t i = 0; i < kPlaces; ++i) {
    stalled.push_back(std::make_unique<Background>(silent.Url()));
    ASSERT_TRUE(stalled.back()->Start());
  }
  ASSERT_TRUE(silent.WaitForRequests(kPlaces));
  Background next(hello_.Url());
  ASSERT_TRUE(next.Start());
  Event never;
  never.Wait(kPause);
  stalled.pop_back();
  EXPECT_EQ(next.WaitForEnd(), kReturned);
  const auto events = TakeEvents();
  const auto end = std::find_if(events.begin(), events.end(), [this](const TransferEvent& event) {
    return event.kind == Kind::kEnded && event.url == Text(hello_.Url());
  });
  ASSERT_NE(end, events.end());
  EXPECT_GE(end->times.queued, 0.19);
  ExpectPlausible(end->times);
}

}  // namespace
}  // namespace stowra_test

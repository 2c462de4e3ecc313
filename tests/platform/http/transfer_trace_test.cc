// SPDX-License-Identifier: MIT
// The steps of a transfer.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <string>
#include <thread>
#include <utility>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/client_socket.h"
#include "tests/support/closed_port.h"

namespace stowra_test {
namespace {

using Kind = TransferEvent::Kind;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr Kind kStepKinds[] = {Kind::kQueued,   Kind::kConnected,  Kind::kRequest, Kind::kFirstByte,
                               Kind::kResponse, Kind::kRedirected, Kind::kPosted};

constexpr char kOneRequest[] = "started connected request first-byte response ended";

const char* NameOf(Kind kind) {
  constexpr const char* kNames[] = {"started", "progress",   "ended",    "queued",     "connected",
                                    "request", "first-byte", "response", "redirected", "posted"};
  return kNames[static_cast<int>(kind)];
}

class TransferTraceTest : public TrustingTest, protected EventRecorder {
 protected:
  // The kinds but kProgress, in order, and forgets the events.
  std::string TakeSteps() {
    std::string names;
    for (const TransferEvent& event : TakeEvents()) {
      if (event.kind == Kind::kProgress) continue;
      names.append(names.empty() ? "" : " ").append(NameOf(event.kind));
    }
    return names;
  }

  // The `index`th event of that kind. Without one, the test fails.
  TransferEvent EventOf(Kind kind, int index = 0) {
    for (const TransferEvent& event : events()) {
      if (event.kind == kind && index-- == 0) return event;
    }
    ADD_FAILURE() << "no event " << NameOf(kind);
    return {};
  }

  std::string HeadOf(Kind kind, int index = 0) { return EventOf(kind, index).head.utf8(); }

  const RawServer hello_{Always(Response(200, "hello", "X-Reply: 1\r\n"))};
};

TEST_F(TransferTraceTest, NoStepIsToldUnasked) {
  Listen();
  for (const Way way : kAllWays) Ask(way, hello_.Url("/?a=b"), "data");
  for (const TransferEvent& event : events()) {
    EXPECT_LE(event.kind, Kind::kEnded);
    EXPECT_EQ(event.request, 0U);
    EXPECT_TRUE(event.request_url.empty());
    EXPECT_TRUE(event.head.empty());
    EXPECT_EQ(event.url, Text(hello_.Url("/?a=b")));
  }
  EXPECT_EQ(TakeSteps() + " ", Repeated("started ended ", std::size(kAllWays)));
}

TEST_F(TransferTraceTest, TellsEachStepInEveryWay) {
  for (const TransferDetail detail : {TransferDetail::kSteps, TransferDetail::kHeads}) {
    Listen(detail);
    for (const Way way : kAllWays) {
      SCOPED_TRACE(NameOf(way));
      Ask(way, hello_.Url(), "data");
      LetWorkerCatchUp();
      for (const TransferEvent& event : events()) {
        EXPECT_TRUE(event.head.empty() || detail == TransferDetail::kHeads);
      }
      EXPECT_EQ(EventOf(Kind::kRequest).request_url, Text(hello_.Url()));
      const std::string one_request = kOneRequest;
      EXPECT_EQ(TakeSteps(), IsBlocking(way) ? one_request : "queued " + one_request + " posted");
    }
  }
}

TEST_F(TransferTraceTest, PostNamesTheNotificationAndItsThread) {
  Listen(TransferDetail::kSteps);
  Background background(hello_.Url());
  EXPECT_EQ(background.Run(), kReturned);
  LetWorkerCatchUp();
  const TransferEvent posted = EventOf(Kind::kPosted);
  EXPECT_EQ(posted.notification, Text(kReturned));
  EXPECT_EQ(posted.status, 200);
  EXPECT_NE(posted.thread, 0U);
  EXPECT_NE(posted.thread, EventOf(Kind::kQueued).thread);
  EXPECT_EQ(events().back().told_on, background.recorder.entries().at(0).thread);
  EXPECT_EQ(events().front().told_on, std::this_thread::get_id());
  EXPECT_NE(events().back().told_on, events().front().told_on);
}

TEST_F(TransferTraceTest, PostIsToldOnTheThreadOfTheCompletion) {
  Listen(TransferDetail::kSteps);
  Event queued;
  std::function<void()> kept;
  InternetData::SetCompletionExecutor([&](std::function<void()> completion) {
    kept = std::move(completion);
    queued.Set();
  });
  Background background(hello_.Url());
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(queued.Wait());
  kept();
  InternetData::SetCompletionExecutor(nullptr);
  EXPECT_EQ(EventOf(Kind::kPosted).thread, EventOf(Kind::kQueued).thread);
  EXPECT_NE(EventOf(Kind::kEnded).thread, EventOf(Kind::kQueued).thread);
}

TEST_F(TransferTraceTest, ConnectionNamesItsAddressAndPort) {
  Listen(TransferDetail::kSteps);
  Fetch("http://localhost:" + std::to_string(hello_.port()) + "/");
  const TransferEvent connected = EventOf(Kind::kConnected);
  EXPECT_EQ(connected.address, "127.0.0.1");
  EXPECT_EQ(connected.port, hello_.port());
  EXPECT_GT(connected.times.connect, 0);
  EXPECT_EQ(EventOf(Kind::kStarted).port, 0);
  EXPECT_EQ(EventOf(Kind::kEnded).port, hello_.port());
}

TEST_F(TransferTraceTest, ThroughAProxyTheConnectionIsTheProxys) {
  defaults_.proxy = Text(hello_.Url(""));
  InternetData::SetDefaults(defaults_);
  Listen(TransferDetail::kHeads);
  Fetch("http://nobody.invalid/a");
  EXPECT_EQ(EventOf(Kind::kConnected).port, hello_.port());
  EXPECT_THAT(HeadOf(Kind::kRequest), StartsWith("GET http://nobody.invalid/a HTTP/1.1\n"));
  EXPECT_EQ(EventOf(Kind::kEnded).url, Text("http://nobody.invalid/a"));
  EXPECT_EQ(TakeSteps(), kOneRequest);
}

TEST_F(TransferTraceTest, TellsOfAKeptConnectionAndItsTlsVersion) {
  for (const bool has_tls : {false, true}) {
    const RawServer server(Always(Response(200, "hello")), has_tls ? tls_ : RawServer::Options());
    Listen(TransferDetail::kSteps);
    for (int i = 0; i < 2; ++i) {
      Fetch(server.Url());
      EXPECT_EQ(EventOf(Kind::kConnected, i).tls, has_tls ? "TLSv1.3" : "");
      EXPECT_EQ(EventOf(Kind::kConnected, i).is_reused, i == 1);
      EXPECT_EQ(EventOf(Kind::kConnected, i).port, server.port());
    }
    EXPECT_EQ(EventOf(Kind::kConnected).times.tls > 0, has_tls);
    EXPECT_TRUE(EventOf(Kind::kEnded, 1).is_reused);
    TakeSteps();
  }
}

TEST_F(TransferTraceTest, ConnectionWithBytesOnItIsNotTold) {
  Event first_ended;
  const RawServer server([&](const RawRequest& request, RawConnection& connection) {
    connection.Write(Response(200, "hello"));
    if (request.target != "/first" || !first_ended.Wait()) return;
    connection.Write("unasked");
  });
  Listen(TransferDetail::kSteps);
  InternetData transport(Text(server.Url("/first")));
  ASSERT_TRUE(transport.Download());
  EXPECT_EQ(TakeSteps(), kOneRequest);
  first_ended.Set();
  ASSERT_TRUE(WaitForBytes(server.port()));
  Fetch(server.Url());
  EXPECT_FALSE(EventOf(Kind::kConnected).is_reused);
  EXPECT_EQ(EventOf(Kind::kConnected).request, 1U);
  EXPECT_EQ(TakeSteps(), kOneRequest);
}

TEST_F(TransferTraceTest, HeadsAreThoseOnTheWire) {
  defaults_.user_agent = "an agent";
  InternetData::SetDefaults(defaults_);
  Listen(TransferDetail::kHeads);
  Ask(Way::kSendAndRead, hello_.Url("/a"), "data");
  const std::string host = "127.0.0.1:" + std::to_string(hello_.port());
  EXPECT_EQ(HeadOf(Kind::kRequest), "POST /a HTTP/1.1\nHost: " + host +
                                        "\nAccept: */*\nUser-Agent: an agent\n"
                                        "Accept-Encoding: gzip\nContent-Length: 4\n");
  EXPECT_EQ(HeadOf(Kind::kResponse), "HTTP/1.1 200 Text\nContent-Length: 5\nX-Reply: 1\n");
  for (const Kind kind : {Kind::kStarted, Kind::kConnected, Kind::kFirstByte, Kind::kEnded}) {
    EXPECT_EQ(HeadOf(kind), "") << NameOf(kind);
  }
}

TEST_F(TransferTraceTest, InterimResponsesHaveHeadsOfTheirOwn) {
  const RawServer server(
      Always("HTTP/1.1 103 Early Hints\r\nLink: </a>\r\n\r\n" + Response(200, "hello")));
  Listen(TransferDetail::kHeads);
  Fetch(server.Url());
  EXPECT_EQ(HeadOf(Kind::kResponse, 0), "HTTP/1.1 103 Early Hints\nLink: </a>\n");
  EXPECT_EQ(EventOf(Kind::kResponse, 0).status, 103);
  EXPECT_EQ(HeadOf(Kind::kResponse, 1), "HTTP/1.1 200 Text\nContent-Length: 5\n");
  EXPECT_EQ(TakeSteps(), "started connected request first-byte response response ended");
}

TEST_F(TransferTraceTest, EachRedirectIsAnotherRequest) {
  const RawServer server(RedirectTo("/to", 303));
  Listen(TransferDetail::kHeads);
  Ask(Way::kSendAndRead, server.Url("/from"), "data");
  EXPECT_STREQ(EventOf(Kind::kStarted).request_method, "POST");
  EXPECT_STREQ(EventOf(Kind::kRequest, 0).request_method, "POST");
  EXPECT_STREQ(EventOf(Kind::kRequest, 1).request_method, "GET");
  const TransferEvent redirected = EventOf(Kind::kRedirected);
  EXPECT_EQ(redirected.request, 1U);
  EXPECT_EQ(redirected.request_url, Text(server.Url("/from")));
  EXPECT_EQ(redirected.redirect_url, Text(server.Url("/to")));
  EXPECT_EQ(redirected.status, 303);
  EXPECT_EQ(redirected.wire_bytes_received, 5U);
  EXPECT_THAT(HeadOf(Kind::kRequest, 1), StartsWith("GET /to HTTP/1.1\n"));
  const TransferEvent end = EventOf(Kind::kEnded);
  EXPECT_STREQ(end.method, "POST");
  EXPECT_EQ(end.request, 2U);
  EXPECT_EQ(end.status, 200);
  for (const TransferEvent& event : events()) EXPECT_EQ(event.url, Text(server.Url("/from")));
  EXPECT_EQ(end.request_url, Text(server.Url("/to")));
  EXPECT_TRUE(end.redirect_url.empty());
  EXPECT_EQ(TakeSteps(),
            "started connected request first-byte response redirected "
            "connected request first-byte response ended");
}

TEST_F(TransferTraceTest, TimesGrowFromStepToStep) {
  const RawServer server(RedirectTo("/to"));
  Listen(TransferDetail::kSteps);
  for (const Way way : kAllWays) Ask(way, server.Url("/from"), "data");
  LetWorkerCatchUp();
  std::map<unsigned long, ovrant::internet::TransferTimes> times;
  for (const TransferEvent& event : events()) {
    auto& before = times[event.number];
    const auto& now = event.times;
    EXPECT_GE(now.total, before.total);
    EXPECT_GE(now.name + now.connect, before.name + before.connect);
    EXPECT_GE(now.first_byte, before.first_byte) << NameOf(event.kind);
    EXPECT_LE(now.first_byte, now.total);
    before = now;
  }
  EXPECT_EQ(times.size(), std::size(kAllWays));
}

TEST_F(TransferTraceTest, SecretsAreBlankedInStepsAndHeads) {
  const RawServer server(
      Always(Response(302, "", "Set-Cookie: a=SECRET\r\nLocation: /?to=SECRET#SECRET\r\n")));
  defaults_.origin_request_headers[Text(server.Url())]["X-Tenant"] = "SECRET";
  defaults_.extra_request_headers["Authorization"] = "SECRET";
  InternetData::SetDefaults(defaults_);
  const std::string url = "http://user:SECRET@" + server.Url("/?from=SECRET").substr(7);
  Listen(TransferDetail::kHeads);
  for (const Way way : kAllWays) Ask(way, url, "data");
  LetWorkerCatchUp();
  for (const TransferEvent& event : events()) {
    const std::string all = event.request_url.utf8() + event.redirect_url.utf8() +
                            event.head.utf8() + event.error.utf8();
    EXPECT_THAT(all, Not(HasSubstr("SECRET"))) << NameOf(event.kind);
    EXPECT_EQ(event.url == Text(url), event.kind <= Kind::kEnded);
    EXPECT_TRUE(event.kind <= Kind::kEnded || event.url.utf8().find("SECRET") == std::string::npos);
  }
  EXPECT_EQ(EventOf(Kind::kConnected).request_url,
            Text("http://***@" + server.Url("/?from=***").substr(7)));
  EXPECT_THAT(HeadOf(Kind::kRequest),
              AllOf(StartsWith("GET /?from=*** HTTP/1.1\n"), HasSubstr("\nX-Tenant: ***\n"),
                    HasSubstr("\nAuthorization: ***\n")));
  EXPECT_THAT(HeadOf(Kind::kResponse), HasSubstr("\nSet-Cookie: ***\nLocation: /?to=***#***\n"));
}

TEST_F(TransferTraceTest, SecretsAreShownOnRequest) {
  defaults_.extra_request_headers["Authorization"] = "SECRET";
  InternetData::SetDefaults(defaults_);
  Listen(TransferDetail::kHeads, TransferSecrets::kShown);
  Fetch(hello_.Url("/?a=b"));
  EXPECT_EQ(EventOf(Kind::kRequest).request_url, Text(hello_.Url("/?a=b")));
  EXPECT_THAT(HeadOf(Kind::kRequest),
              AllOf(StartsWith("GET /?a=b HTTP/1.1\n"), HasSubstr("\nAuthorization: SECRET\n")));
}

TEST_F(TransferTraceTest, FailureEndsTheStepsWhereItHappens) {
  const RawServer silent(Silence());
  const RawServer inside_head(AlwaysThenClose("HTTP/1.1 200 OK\r\nX-Whole: 1\r\nX-Par"));
  const RawServer inside_body(AlwaysThenClose("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhello"));
  const RawServer malformed(Always("HTTP/1.1 200 OK\r\nno field\r\n\r\n"));
  const ClosedPort closed;
  const struct {
    std::string url;
    TransferError reason;
    const char* steps;
  } cases[] = {
      {"bad:", TransferError::kBadUrl, "started ended"},
      {closed.Url(), TransferError::kNotConnected, "started ended"},
      {"https" + silent.Url().substr(4), TransferError::kSilent, "started ended"},
      {silent.Url(), TransferError::kSilent, "started connected request ended"},
      {inside_head.Url(), TransferError::kCutOff, "started connected request first-byte ended"},
      {malformed.Url(), TransferError::kMalformed, "started connected request first-byte ended"},
      {inside_body.Url(), TransferError::kCutOff, kOneRequest},
  };
  Listen(TransferDetail::kHeads);
  for (const auto& [url, reason, steps] : cases) {
    SetInactivityTimeout(reason == TransferError::kSilent ? 0.2F : 0.0F);
    Fetch(url);
    EXPECT_EQ(EventOf(Kind::kEnded).reason, reason) << url;
    EXPECT_EQ(TakeSteps(), steps) << url;
  }
}

TEST_F(TransferTraceTest, EndShowsAHeadThatBrokeOff) {
  const RawServer server(AlwaysThenClose("HTTP/1.1 200 OK\r\nX-Whole: 1\r\nX-Par"));
  Listen(TransferDetail::kHeads);
  Fetch(server.Url());
  EXPECT_THAT(HeadOf(Kind::kEnded), StartsWith("HTTP/1.1 200 OK\nX-Whole: 1\n"));
}

TEST_F(TransferTraceTest, DroppedTransferEndsItsSteps) {
  const RawServer server(Silence());
  Listen(TransferDetail::kSteps);
  {
    Background background(server.Url());
    ASSERT_TRUE(background.Start());
    ASSERT_TRUE(server.WaitForRequests(1));
  }
  ASSERT_TRUE(server.WaitUntilUnused());
  LetWorkerCatchUp();
  EXPECT_EQ(EventOf(Kind::kEnded).reason, TransferError::kDropped);
  EXPECT_FALSE(EventOf(Kind::kEnded).error.empty());
  EXPECT_EQ(TakeSteps(), "queued started connected request ended");
}

// The listener deletes transport and delegate in the first step of each kind.
TEST_F(TransferTraceTest, ListenerMayDeleteTheTransferAtEachStep) {
  const RawServer server(RedirectTo("/to"));
  for (const Kind kind : kStepKinds) {
    Background background(server.Url("/from"));
    Event deleted;
    InternetData::SetTransferListener(
        [&](const TransferEvent& event) {
          if (event.kind != kind || background.transport == nullptr) return;
          background.transport.reset();
          background.delegate.reset();
          deleted.Set();
        },
        TransferDetail::kHeads);
    background.transport->DownloadWithDelegate(background.delegate.get(), nullptr);
    EXPECT_TRUE(deleted.Wait()) << NameOf(kind);
    LetWorkerCatchUp();
    InternetData::SetTransferListener(nullptr);
    EXPECT_EQ(background.recorder.entries().size(), kind == Kind::kPosted ? 1U : 0U)
        << NameOf(kind);
  }
}

}  // namespace
}  // namespace stowra_test

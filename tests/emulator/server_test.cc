// SPDX-License-Identifier: MIT

#include <atomic>
#include <cerrno>
#include <cstring>
#include <deque>
#include <sstream>
#include <thread>

#include "tests/emulator/http_client.h"

namespace stowra_emulator {
namespace {

using ServerTest = RawTest;

TEST_F(ServerTest, ClosesAfterAThousandRequests) {
  RawClient client(port());
  for (int request = 1; request <= 1000; ++request) {
    const RawResponse response = client.Get("/user-info");
    ASSERT_EQ(response.status(), 200) << request;
    ASSERT_THAT(response.body, HasSubstr("u-1001")) << request;
    ASSERT_EQ(response.Header("Connection") == "close", request == 1000) << request;
  }
  EXPECT_EQ(client.ReadToEnd(), "");
  EXPECT_FALSE(client.was_reset());
}

TEST_F(ServerTest, AnswersPipelinedRequestsInOrder) {
  RawClient client(port());
  client.Send(GetRequest("/user-info?user=u-1002") + GetRequest("/nope") + GetRequest("/update"));
  EXPECT_THAT(ReadResponse(client).body, HasSubstr("u-1002"));
  EXPECT_EQ(ReadResponse(client).status(), 404);
  EXPECT_THAT(ReadResponse(client).body, HasSubstr("datafiles"));
}

TEST_F(ServerTest, ServesRequestThatComesDuringAFault) {
  RawClient client(port());
  client.Send(GetRequest("/user-info?fault=drip:1"));
  const RawResponse dripping = {client.ReadUntil("\r\n\r\n"), std::string()};
  client.Send(GetRequest("/update"));
  EXPECT_THAT(client.Read(std::stoul(dripping.Header("Content-Length"))), HasSubstr("u-1001"));
  EXPECT_THAT(ReadResponse(client).body, HasSubstr("datafiles"));
}

TEST_F(ServerTest, ClosesWhenTheClientAsks) {
  const RawResponse response = RawGet(port(), "/user-info");
  EXPECT_EQ(response.status(), 200);
  EXPECT_EQ(response.Header("Connection"), "close");
  EXPECT_EQ(response.Header("Content-Length"), std::to_string(response.body.size()));
}

TEST_F(ServerTest, PostWithoutLengthHasAnEmptyBody) {
  RawClient client(port());
  EXPECT_EQ(client.Ask("POST /extensions HTTP/1.1\r\nHost: localhost\r\n\r\n").status(), 400);
  EXPECT_EQ(client.Get("/user-info").status(), 200);
}

TEST_F(ServerTest, ReadsChunkedBody) {
  RawClient client(port());
  const RawResponse response = client.Ask(
      "POST /extensions HTTP/1.1\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n"
      "10\r\n{\"extensions\":[{\r\n14\r\n\"id\":\"roof-tools\"}]}\r\n0\r\n\r\n");
  EXPECT_THAT(response.body, HasSubstr("roof-tools"));
  EXPECT_EQ(client.Get("/user-info").status(), 200);
}

TEST_F(ServerTest, TellsAWaitingClientToContinue) {
  RawClient client(port());
  client.Send("POST /extensions HTTP/1.1\r\nHost: localhost\r\nExpect: 100-continue\r\n" +
              ("Content-Length: " + std::to_string(sizeof(kExtensions) - 1)) + "\r\n\r\n");
  EXPECT_EQ(client.ReadUntil("\r\n\r\n"), "HTTP/1.1 100 Continue\r\n\r\n");
  EXPECT_THAT(client.Ask(kExtensions).body, HasSubstr("roof-tools"));
}

TEST_F(ServerTest, RefusesMalformedRequestAndCloses) {
  for (const char* request :
       {"nonsense\r\n\r\n", "GET\r\n\r\n", "BREW / HTTP/1.1\r\n\r\n", "TRACE / HTTP/1.1\r\n\r\n"}) {
    SCOPED_TRACE(request);
    const RawResponse response = AnswerTo(request);
    EXPECT_EQ(response.status(), 400);
    EXPECT_THAT(response.body, HasSubstr("error"));
  }
}

TEST_F(ServerTest, RefusesOverlongAddress) {
  EXPECT_EQ(RawGet(port(), "/" + std::string(8000, 'x')).status(), 404);
  EXPECT_EQ(RawGet(port(), "/" + std::string(20000, 'x')).status(), 414);
}

TEST_F(ServerTest, DoesNotTakeUnreadBodyForARequest) {
  AnswerTo("GET /user-info HTTP/1.1\r\nContent-Length: 20\r\n\r\nGET / HTTP/1.1\r\n\r\n..");
  EXPECT_THAT(EndAndReadLog(), MatchesRegex("GET /user-info 200 [0-9]+\n"));
}

TEST_F(ServerTest, ClosesWithoutResetWhenBodyIsUnread) {
  const std::string head = "GET /user-info HTTP/1.1\r\nContent-Length: 300000\r\n\r\n";
  EXPECT_EQ(AnswerTo(head + std::string(300000, 'x')).status(), 200);
}

TEST_F(ServerTest, LogsMethodTargetStatusAndBytesSent) {
  RawClient client(port());
  const std::size_t whole = client.Get("/user-info?user=u-1002").body.size();
  client.Send("HEAD /nope?a=%20b HTTP/1.1\r\nHost: localhost\r\n\r\n");
  client.ReadUntil("\r\n\r\n");
  client.Send(GetRequest("/user-info?user=u-1002&fault=truncate"));
  client.ReadToEnd();
  AnswerTo("\x1B[2J\r\n\r\n");
  EXPECT_THAT(EndAndReadLog(),
              StartsWith("GET /user-info?user=u-1002 200 " + std::to_string(whole) +
                         "\nHEAD /nope?a=%20b 404 0"
                         "\nGET /user-info?user=u-1002&fault=truncate 200 " +
                         std::to_string(whole / 2) + "\n?[2J - 400 "));
}

TEST_F(ServerTest, ServesManyClientsAtOnce) {
  std::deque<RawClient> idle;
  for (int i = 0; i < 200; ++i) idle.emplace_back(port());
  std::vector<std::thread> threads;
  std::atomic<int> answered{0};
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([this, &answered] {
      httplib::Client client = PatientClient(emulator_->url());
      for (int n = 0; n < 20; ++n) {
        const httplib::Result got = client.Get("/update");
        const httplib::Result posted = client.Post("/extensions", kExtensions, "application/json");
        if (got && got->status == 200 && posted && posted->status == 200) ++answered;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(answered, 8 * 20);
  for (RawClient& client : idle) client.Send(GetRequest("/user-info"));
  for (RawClient& client : idle) EXPECT_EQ(ReadResponse(client).status(), 200);
}

TEST_F(ServerTest, StopsSoonDuringAnyRequest) {
  std::deque<RawClient> clients;
  for (const char* request :
       {"", "GET /user-in", "POST /extensions HTTP/1.1\r\nContent-Length: 100\r\n\r\n{"}) {
    clients.emplace_back(port()).Send(request);
  }
  for (const char* fault : {"stall:600", "drip:60000", "drip:1"}) {
    clients.emplace_back(port()).Send(GetRequest(std::string("/update?fault=") + fault));
  }
  // The drips have begun once their heads have arrived.
  clients[4].ReadUntil("\r\n\r\n");
  clients[5].ReadUntil("\r\n\r\n");
  RawClient idle(port());
  idle.Get("/user-info");
  EXPECT_LT(TimeOf([this] { emulator_.reset(); }), kPatience);
  EXPECT_EQ(clients[3].ReadToEnd(), "");
  EXPECT_EQ(idle.ReadToEnd(), "");
}

TEST_F(ServerTest, StopsWhileAClientReadsNothing) {
  RawClient client(port());
  // The responses are larger than the socket buffers.
  for (int i = 0; i < 20; ++i) client.Send(GetRequest("/?fault=bomb"));
  EXPECT_EQ(client.Read(9), "HTTP/1.1 ");
  EXPECT_LT(TimeOf([this] { emulator_.reset(); }), kPatience);
}

// A log whose first line can be waited for.
struct OneLineLog : std::stringbuf {
  int sync() override {
    has_line.Set();
    return 0;
  }
  stowra_test::Event has_line;
};

TEST_F(ServerTest, StallEndsWhenTheClientLeaves) {
  OneLineLog log;
  std::ostream stream(&log);
  options_.log = &stream;
  RawClient(port()).Send(GetRequest("/user-info?fault=stall:600"));
  EXPECT_TRUE(log.has_line.Wait());
  emulator_.reset();
  EXPECT_EQ(log.str(), "GET /user-info?fault=stall:600 200 0\n");
}

TEST_F(ServerTest, RefusesTakenPort) {
  const Emulator first;
  EmulatorOptions options;
  options.port = first.port();
  EXPECT_THAT(
      [&options] { const Emulator second(options); },
      ThrowsMessage<std::exception>(AllOf(HasSubstr("127.0.0.1:" + std::to_string(first.port())),
                                          HasSubstr(std::strerror(EADDRINUSE)))));
}

TEST_F(ServerTest, LeavesPortFreeForTheNextRun) {
  EmulatorOptions options;
  {
    const Emulator first;
    options.port = first.port();
    // The emulator closes first, so its socket stays in TIME_WAIT.
    RawClient client(first.port());
    client.Send(GetRequest("/user-info?fault=truncate"));
    client.ReadToEnd();
  }
  const Emulator second(options);
  EXPECT_EQ(second.port(), options.port);
  EXPECT_EQ(RawGet(second.port(), "/user-info").status(), 200);
}

}  // namespace
}  // namespace stowra_emulator

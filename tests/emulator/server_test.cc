// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <sstream>
#include <streambuf>
#include <string>
#include <thread>
#include <vector>

#include "emulator/emulator.h"
#include "tests/emulator/raw_client.h"

namespace stowra_emulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kExtensionsBody = R"({"extensions":[{"id":"roof-tools"}]})";

// A log that a test can wait for.
class WatchedLog : public std::streambuf {
 public:
  // False if the text has not come in 30 seconds.
  bool WaitFor(const std::string& text) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(30),
                             [this, &text] { return written_.find(text) != std::string::npos; });
  }

 protected:
  std::streamsize xsputn(const char* text, std::streamsize size) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    written_.append(text, static_cast<std::size_t>(size));
    changed_.notify_all();
    return size;
  }

  int_type overflow(int_type c) override {
    const char byte = traits_type::to_char_type(c);
    xsputn(&byte, 1);
    return c;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::string written_;
};

TEST(ServerTest, ServesManyRequestsOnOneConnection) {
  const Emulator emulator;
  RawClient client(emulator.port());
  const std::string first = (client.Send(GetRequest("/user-info")), ReadResponse(client).body);
  for (int i = 0; i < 20; ++i) {
    client.Send(GetRequest("/user-info"));
    EXPECT_EQ(ReadResponse(client).body, first);
  }
}

TEST(ServerTest, ClosesAfterAThousandRequests) {
  const Emulator emulator;
  RawClient client(emulator.port());
  for (int request = 1; request <= 1000; ++request) {
    client.Send(GetRequest("/user-info"));
    const RawResponse response = ReadResponse(client);
    ASSERT_THAT(response.head, StartsWith("HTTP/1.1 200 ")) << request;
    ASSERT_EQ(response.Header("Connection") == "close", request == 1000) << request;
  }
  EXPECT_EQ(client.ReadToEnd(), "");
  EXPECT_FALSE(client.was_reset());
}

TEST(ServerTest, AnswersPipelinedRequestsInOrder) {
  const Emulator emulator;
  RawClient client(emulator.port());
  client.Send(GetRequest("/user-info?user=u-1002") + GetRequest("/nope") + GetRequest("/update"));
  EXPECT_THAT(ReadResponse(client).body, HasSubstr("u-1002"));
  EXPECT_THAT(ReadResponse(client).head, StartsWith("HTTP/1.1 404 "));
  EXPECT_THAT(ReadResponse(client).body, HasSubstr("datafiles"));
}

TEST(ServerTest, ServesRequestThatComesDuringAFault) {
  const Emulator emulator;
  RawClient client(emulator.port());
  client.Send(GetRequest("/user-info?fault=drip:1"));
  const RawResponse dripping = {client.ReadUntil("\r\n\r\n"), std::string()};
  client.Send(GetRequest("/update"));
  EXPECT_THAT(client.Read(std::stoul(dripping.Header("Content-Length"))), HasSubstr("u-1001"));
  EXPECT_THAT(ReadResponse(client).body, HasSubstr("datafiles"));
}

TEST(ServerTest, ClosesWhenTheClientAsks) {
  const Emulator emulator;
  const RawResponse response = RawGet(emulator.port(), "/user-info");
  EXPECT_THAT(response.head, StartsWith("HTTP/1.1 200 "));
  EXPECT_EQ(response.Header("Connection"), "close");
  EXPECT_EQ(response.Header("Content-Length"), std::to_string(response.body.size()));
}

TEST(ServerTest, PostWithoutLengthHasAnEmptyBody) {
  const Emulator emulator;
  RawClient client(emulator.port());
  client.Send("POST /extensions HTTP/1.1\r\nHost: localhost\r\n\r\n");
  EXPECT_THAT(ReadResponse(client).head, StartsWith("HTTP/1.1 400 "));
  client.Send(GetRequest("/user-info"));
  EXPECT_THAT(ReadResponse(client).head, StartsWith("HTTP/1.1 200 "));
}

TEST(ServerTest, ReadsChunkedBody) {
  const Emulator emulator;
  RawClient client(emulator.port());
  client.Send(
      "POST /extensions HTTP/1.1\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n"
      "10\r\n{\"extensions\":[{\r\n14\r\n\"id\":\"roof-tools\"}]}\r\n0\r\n\r\n");
  EXPECT_THAT(ReadResponse(client).body, HasSubstr("roof-tools"));
  client.Send(GetRequest("/user-info"));
  EXPECT_THAT(ReadResponse(client).head, StartsWith("HTTP/1.1 200 "));
}

TEST(ServerTest, TellsAWaitingClientToContinue) {
  const Emulator emulator;
  RawClient client(emulator.port());
  client.Send("POST /extensions HTTP/1.1\r\nHost: localhost\r\nExpect: 100-continue\r\n" +
              ("Content-Length: " + std::to_string(std::strlen(kExtensionsBody))) + "\r\n\r\n");
  EXPECT_EQ(client.ReadUntil("\r\n\r\n"), "HTTP/1.1 100 Continue\r\n\r\n");
  client.Send(kExtensionsBody);
  EXPECT_THAT(ReadResponse(client).body, HasSubstr("roof-tools"));
}

TEST(ServerTest, RefusesMalformedRequestAndCloses) {
  for (const char* request :
       {"nonsense\r\n\r\n", "GET\r\n\r\n", "BREW / HTTP/1.1\r\n\r\n", "TRACE / HTTP/1.1\r\n\r\n"}) {
    const Emulator emulator;
    RawClient client(emulator.port());
    client.Send(request);
    const RawResponse response = SplitResponse(client.ReadToEnd());
    EXPECT_THAT(response.head, StartsWith("HTTP/1.1 400 ")) << request;
    EXPECT_THAT(response.body, HasSubstr("error")) << request;
    EXPECT_FALSE(client.was_reset()) << request;
  }
}

TEST(ServerTest, RefusesOverlongAddress) {
  const Emulator emulator;
  EXPECT_THAT(RawGet(emulator.port(), "/" + std::string(8000, 'x')).head,
              StartsWith("HTTP/1.1 404 "));
  EXPECT_THAT(RawGet(emulator.port(), "/" + std::string(20000, 'x')).head,
              StartsWith("HTTP/1.1 414 "));
}

TEST(ServerTest, DoesNotTakeUnreadBodyForARequest) {
  std::ostringstream log;
  EmulatorOptions options;
  options.log = &log;
  {
    const Emulator emulator(options);
    RawClient client(emulator.port());
    client.Send("GET /user-info HTTP/1.1\r\nContent-Length: 20\r\n\r\nGET / HTTP/1.1\r\n\r\n..");
    client.ReadToEnd();
    EXPECT_FALSE(client.was_reset());
  }
  EXPECT_THAT(log.str(), testing::MatchesRegex("GET /user-info 200 [0-9]+\n"));
}

TEST(ServerTest, ClosesWithoutResetWhenBodyIsUnread) {
  const Emulator emulator;
  RawClient client(emulator.port());
  client.Send("GET /user-info HTTP/1.1\r\nContent-Length: 300000\r\n\r\n");
  client.Send(std::string(300000, 'x'));
  EXPECT_THAT(SplitResponse(client.ReadToEnd()).head, StartsWith("HTTP/1.1 200 "));
  EXPECT_FALSE(client.was_reset());
}

TEST(ServerTest, LogsMethodTargetStatusAndBytesSent) {
  std::ostringstream log;
  EmulatorOptions options;
  options.log = &log;
  std::size_t whole = 0;
  {
    const Emulator emulator(options);
    RawClient client(emulator.port());
    client.Send(GetRequest("/user-info?user=u-1002"));
    whole = ReadResponse(client).body.size();
    client.Send("HEAD /nope?a=%20b HTTP/1.1\r\nHost: localhost\r\n\r\n");
    client.ReadUntil("\r\n\r\n");
    client.Send(GetRequest("/user-info?user=u-1002&fault=truncate"));
    client.ReadToEnd();
    RawClient other(emulator.port());
    other.Send("\x1B[2J\r\n\r\n");
    other.ReadToEnd();
  }
  const std::string sent = std::to_string(whole);
  const std::string half = std::to_string(whole / 2);
  EXPECT_THAT(log.str(), StartsWith("GET /user-info?user=u-1002 200 " + sent +
                                    "\nHEAD /nope?a=%20b 404 0"
                                    "\nGET /user-info?user=u-1002&fault=truncate 200 " +
                                    half + "\n?[2J - 400 "));
}

TEST(ServerTest, ServesManyClientsAtOnce) {
  const Emulator emulator;
  std::deque<RawClient> idle;
  for (int i = 0; i < 200; ++i) idle.emplace_back(emulator.port());
  std::vector<std::thread> threads;
  std::atomic<int> answered{0};
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&emulator, &answered] {
      httplib::Client client(emulator.url());
      for (int n = 0; n < 20; ++n) {
        const httplib::Result got = client.Get("/update");
        const httplib::Result posted =
            client.Post("/extensions", kExtensionsBody, "application/json");
        if (got && got->status == 200 && posted && posted->status == 200) ++answered;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(answered, 8 * 20);
  for (RawClient& client : idle) client.Send(GetRequest("/user-info"));
  for (RawClient& client : idle) {
    EXPECT_THAT(ReadResponse(client).head, StartsWith("HTTP/1.1 200 "));
  }
}

TEST(ServerTest, StopsWithinASecondDuringAnyRequest) {
  auto emulator = std::make_unique<Emulator>();
  std::deque<RawClient> clients;
  for (const char* request :
       {"", "GET /user-in", "POST /extensions HTTP/1.1\r\nContent-Length: 100\r\n\r\n{"}) {
    clients.emplace_back(emulator->port()).Send(request);
  }
  for (const char* fault : {"stall:600", "drip:60000", "drip:1"}) {
    clients.emplace_back(emulator->port()).Send(GetRequest(std::string("/update?fault=") + fault));
  }
  // The drips have begun once their heads have arrived.
  clients[4].ReadUntil("\r\n\r\n");
  clients[5].ReadUntil("\r\n\r\n");
  RawClient idle(emulator->port());
  idle.Send(GetRequest("/user-info"));
  ReadResponse(idle);

  const auto start = steady_clock::now();
  emulator.reset();
  EXPECT_LT(steady_clock::now() - start, milliseconds(1000));
  EXPECT_EQ(clients[3].ReadToEnd(), "");
  EXPECT_EQ(idle.ReadToEnd(), "");
}

TEST(ServerTest, StopsWhileAClientReadsNothing) {
  auto emulator = std::make_unique<Emulator>();
  RawClient client(emulator->port());
  // The responses are larger than the socket buffers.
  for (int i = 0; i < 20; ++i) client.Send(GetRequest("/?fault=bomb"));
  EXPECT_EQ(client.Read(9), "HTTP/1.1 ");
  const auto start = steady_clock::now();
  emulator.reset();
  EXPECT_LT(steady_clock::now() - start, milliseconds(1000));
}

TEST(ServerTest, StallEndsWhenTheClientLeaves) {
  WatchedLog log;
  std::ostream stream(&log);
  EmulatorOptions options;
  options.log = &stream;
  const Emulator emulator(options);
  RawClient(emulator.port()).Send(GetRequest("/user-info?fault=stall:600"));
  EXPECT_TRUE(log.WaitFor("GET /user-info?fault=stall:600 200 0\n"));
}

TEST(ServerTest, RefusesTakenPort) {
  const Emulator first;
  EmulatorOptions options;
  options.port = first.port();
  try {
    const Emulator second(options);
    FAIL() << "two emulators on port " << second.port();
  } catch (const std::exception& error) {
    EXPECT_THAT(error.what(), HasSubstr("127.0.0.1:" + std::to_string(first.port())));
    EXPECT_THAT(error.what(), HasSubstr(std::strerror(EADDRINUSE)));
  }
}

TEST(ServerTest, LeavesPortFreeForTheNextRun) {
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
  EXPECT_THAT(RawGet(second.port(), "/user-info").head, StartsWith("HTTP/1.1 200 "));
}

TEST(ServerTest, TwoEmulatorsRunSideBySide) {
  const Emulator first;
  const Emulator second;
  EXPECT_NE(first.url(), second.url());
  EXPECT_EQ(httplib::Client(first.url()).Get("/user-info")->status, 200);
  EXPECT_EQ(httplib::Client(second.url()).Get("/user-info")->status, 200);
}

}  // namespace
}  // namespace stowra_emulator

// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/handlers.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/small_stack.h"

namespace stowra_test {
namespace {

// Every byte value, NUL included.
std::string AllBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

class ExchangeTest : public TransportTest {
 protected:
  const RawServer hello_{Always(Response(200, "hello"))};
};

TEST_F(ExchangeTest, DownloadGetsTheUrlWithoutItsFragment) {
  EXPECT_EQ(Get(hello_.Url("/a/b?c=d&e=%20f#fragment")), Received(200, "hello"));
  const auto requests = hello_.requests();
  ASSERT_EQ(requests.size(), 1U);
  EXPECT_EQ(requests[0].method, "GET");
  EXPECT_EQ(requests[0].target, "/a/b?c=d&e=%20f");
  EXPECT_EQ(requests[0].Header("Host"), "127.0.0.1:" + std::to_string(hello_.port()));
  EXPECT_EQ(requests[0].body, "");
  EXPECT_FALSE(requests[0].HasHeader("Content-Length"));
}

TEST_F(ExchangeTest, DownloadDoesNotSendTheSendData) {
  InternetData transport(Text(hello_.Url()));
  SetSendData("data", transport);
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(LastRequest(hello_).method, "GET");
  EXPECT_EQ(LastRequest(hello_).body, "");
}

TEST_F(ExchangeTest, SchemeIsCaseInsensitive) {
  EXPECT_EQ(Get("HTTP" + hello_.Url().substr(4)), Received(200, "hello"));
}

TEST_F(ExchangeTest, EmptyBodyIsNull) {
  // A length that a body would have had does not count.
  for (const char* response : {"HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n",
                               "HTTP/1.1 204 Text\r\nContent-Length: 5\r\n\r\n",
                               "HTTP/1.1 304 Text\r\nContent-Length: 5\r\n\r\n"}) {
    const RawServer server(Always(response));
    InternetData transport(Text(server.Url()));
    EXPECT_TRUE(transport.Download()) << response;
    EXPECT_EQ(transport.status_code(), std::stoi(std::string(response).substr(9)));
    EXPECT_EQ(transport.received_data(), nullptr) << response;
    EXPECT_EQ(transport.received_data_length(), 0U) << response;
  }
}

TEST_F(ExchangeTest, LargeBodiesArriveWholeInBothDirections) {
  std::string body(kLargeBody, '\0');
  for (std::size_t i = 0; i < body.size(); ++i) body[i] = static_cast<char>(i * 31 >> 7);
  const RawServer server(Echo);
  EXPECT_EQ(PostTo(server.Url(), body), Received(200, body));
}

TEST_F(ExchangeTest, ReplyOfAnyStatusIsReceivedInAllWays) {
  for (const int status :
       {200, 201, 206, 299, 300, 400, 401, 403, 404, 407, 409, 410, 429, 500, 502, 503, 599, 999}) {
    const RawServer server(Always(Response(status, "the body")));
    for (const Way way : {Way::kDownload, Way::kDownloadWithDelegate, Way::kSendAndRead}) {
      EXPECT_EQ(Ask(way, server.Url(), "data"), Received(status, "the body")) << NameOf(way);
    }
  }
}

TEST_F(ExchangeTest, FitsASmallStack) {
  const std::string body(100'000, 'x');
  const RawServer server(
      FirstThen(Response(302, "", "Location: /next\r\n"), Response(200, Gzip(body), kGzipHeader)));
  RunOnSmallStack([&] { EXPECT_EQ(Get(server.Url()), Received(200, body)); });
}

TEST_F(ExchangeTest, NextTransferReplacesTheResponse) {
  const RawServer server([count = 0](const RawRequest&, RawConnection& connection) mutable {
    connection.Write(++count == 1 ? Response(200, "first", "X-First: 1\r\n")
                                  : Response(404, "", "X-Second: 2\r\n"));
  });
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(transport.status_code(), 404);
  EXPECT_EQ(transport.received_data(), nullptr);
  EXPECT_EQ(HeaderOf(transport, "X-First"), "(none)");
  EXPECT_EQ(HeaderOf(transport, "X-Second"), "2");
}

TEST_F(ExchangeTest, StartOfABackgroundTransferResetsTheResponse) {
  Event answer;
  const RawServer server(AnswerAfter(answer, Response(404, "second")));
  Background background(server.Url());
  ASSERT_TRUE(Post(hello_.Url(), *background.transport));
  ASSERT_TRUE(background.Start());
  ASSERT_TRUE(server.WaitForRequests(1));
  ExpectFailureState(*background.transport);
  answer.Set();
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(background.transport->status_code(), 404);
  EXPECT_EQ(BodyOf(*background.transport), "second");
}

TEST_F(ExchangeTest, SendAndReadFillsEveryOutput) {
  const RawServer server(Always(Response(201, "hello", "X-Reply: yes\r\n")));
  InternetData transport(Text("none:"));
  SetSendData(AllBytes(), transport);
  unsigned char* data = nullptr;
  unsigned long length = 0;
  int status = 0;
  StringMap sent = {{"Content-Type", "application/json"}};
  StringMap received = {{"stale", "1"}};
  EXPECT_TRUE(transport.SendAndRead(Text(server.Url("/post")), &data, &length, &status, &sent,
                                    false, false, true, "", "", &received));
  EXPECT_EQ(data, transport.received_data());
  EXPECT_EQ(length, 5U);
  EXPECT_EQ(BodyOf(transport), "hello");
  EXPECT_EQ(status, 201);
  EXPECT_EQ(transport.status_code(), 201);
  EXPECT_EQ(received.at("X-Reply"), Text("yes"));
  EXPECT_EQ(received.count("stale"), 0U);
  const auto requests = server.requests();
  ASSERT_EQ(requests.size(), 1U);
  EXPECT_EQ(requests[0].method, "POST");
  EXPECT_EQ(requests[0].target, "/post");
  EXPECT_EQ(requests[0].body, AllBytes());
  EXPECT_EQ(requests[0].Header("Content-Type"), "application/json");
}

TEST_F(ExchangeTest, FailedSendAndReadClearsResponseAndOutputs) {
  const RawServer server(AlwaysThenClose("HTTP/1.1 203 Text\r\nContent-Length: 9\r\n\r\nshort"));
  InternetData transport(Text(hello_.Url()));
  ASSERT_TRUE(transport.Download());
  unsigned char stale = 0;
  unsigned char* data = &stale;
  unsigned long length = 1;
  int status = -1;
  StringMap received = {{"stale", "1"}};
  EXPECT_FALSE(transport.SendAndRead(Text(server.Url()), &data, &length, &status, nullptr, false,
                                     false, true, "", "", &received));
  EXPECT_EQ(data, nullptr);
  EXPECT_EQ(length, 0U);
  EXPECT_EQ(status, 203);
  EXPECT_TRUE(received.empty());
  ExpectFailureState(transport, 203);
}

TEST_F(ExchangeTest, UploadWithoutDataSendsAnEmptyBody) {
  InternetData transport(Text("none:"));
  EXPECT_TRUE(Post(hello_.Url(), transport));
  EXPECT_EQ(Background(hello_.Url()).Upload(""), kReturned);
  for (const RawRequest& request : hello_.requests()) {
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.Header("Content-Length"), "0");
    EXPECT_FALSE(request.HasHeader("Transfer-Encoding"));
  }
  EXPECT_EQ(hello_.requests().size(), 2U);
}

TEST_F(ExchangeTest, SendDataCanBeReplacedAndCleared) {
  InternetData transport(Text("none:"));
  const auto send = [&] { EXPECT_TRUE(Post(hello_.Url(), transport)); };
  SetSendData("one", transport);
  send();
  send();
  SetSendData("two", transport);
  send();
  transport.set_send_data(nullptr, 0);
  send();
  SetSendData("three", transport);
  transport.set_send_data(nullptr, 5);
  send();
  std::vector<std::string> bodies;
  for (const RawRequest& request : hello_.requests()) bodies.push_back(request.body);
  EXPECT_EQ(bodies, (std::vector<std::string>{"one", "one", "two", "", ""}));
}

TEST_F(ExchangeTest, SendDataIsCopied) {
  Event go_on;
  const RawServer server(
      [&go_on](const RawRequest&, RawConnection& connection) {
        EXPECT_TRUE(go_on.Wait());
        std::string body;
        while (body.size() < kLargeBody && connection.Read(body)) {
        }
        connection.Write(Response(200, body == std::string(kLargeBody, 'a') ? "same" : "other"));
      },
      {nullptr, false, 0});
  Background background(server.Url());
  std::string data(kLargeBody, 'a');
  SetSendData(data, *background.transport);
  data.assign(kLargeBody, 'b');
  ASSERT_TRUE(background.transport->UploadWithDelegate(background.delegate.get(), nullptr));
  // Data that is set during an upload is for later uploads only.
  SetSendData(data, *background.transport);
  go_on.Set();
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(BodyOf(*background.transport), "same");
}

TEST_F(ExchangeTest, BadUrlIsRefusedAndDoesNotHarmTheNext) {
  for (const char* url : {"",
                          " ",
                          "garbage",
                          "/relative",
                          "//127.0.0.1/",
                          "none:",
                          ":",
                          "http",
                          "http:",
                          "http:/",
                          "http://",
                          "https://",
                          "http:///",
                          "http://:80/",
                          "http://[::1",
                          "http://127.0.0.1:99999/",
                          "http://127.0.0.1:-1/",
                          "http://127.0.0.1:port/",
                          "http://exa mple/",
                          "http://a\r\nHost: b/",
                          "http://%00/",
                          "http://\xC3\xA9 /",
                          "file:///etc/passwd",
                          "FILE:///etc/passwd",
                          "ftp://127.0.0.1/",
                          "gopher://127.0.0.1/",
                          "dict://127.0.0.1/",
                          "ldap://127.0.0.1/",
                          "data:text/plain,x",
                          "javascript:0",
                          "ws://127.0.0.1/",
                          "httpx://127.0.0.1/",
                          "https+file://x",
                          "\xFF\xFE"}) {
    for (const Way way : {Way::kDownload, Way::kDownloadWithDelegate}) {
      EXPECT_EQ(Ask(way, url, ""), NotReceived()) << NameOf(way) << " " << url;
      EXPECT_EQ(Ask(way, hello_.Url(), ""), Received(200, "hello")) << "after " << url;
    }
  }
}

TEST_F(ExchangeTest, SendsNoPartOfABadUrl) {
  for (const std::string& url :
       {hello_.Url("/a") + '\0' + "b", hello_.Url("/a HTTP/1.1\r\nX-Injected: 1\r\n\r\n"),
        hello_.Url("/a b\r\n"), hello_.Url("/\x01")}) {
    EXPECT_EQ(Get(url), Failed(0, TransferError::kBadUrl)) << url;
  }
  EXPECT_EQ(hello_.connections(), 0);
}

}  // namespace
}  // namespace stowra_test

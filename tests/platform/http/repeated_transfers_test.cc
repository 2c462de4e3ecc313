// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <chrono>
#include <mutex>
#include <set>
#include <string>

#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

constexpr char kOk[] = "HTTP/1.1 200 OK\r\n";
constexpr char kEnd[] = "Content-Length: 0\r\n\r\n";

// A value that needs memory of its own, so sanitizers see every access.
const std::string kLong(100, 'x');

// Transfers after others that went wrong. libcurl 7.88 leaves a dangling pointer to the headers of
// a transfer in its easy handle, so none is used twice.
class RepeatedTransfersTest : public TransportTest {
 protected:
  static void ExpectHello(const std::string& url) {
    EXPECT_EQ(Fetch(url), Received(200, "hello"));
    EXPECT_EQ(FetchInBackground(url), Received(200, "hello"));
  }
};

TEST_F(RepeatedTransfersTest, SurvivesALeadingContinuation) {
  const std::string folded = " folded: " + kLong + "\r\n";
  const std::string interim = "HTTP/1.1 100 Continue\r\n";
  for (const std::string& odd :
       {kOk + folded + kEnd, kOk + ("\t" + folded) + "X-Next: 1\r\n more\r\n" + kEnd,
        "HTTP/1.1 302 Found\r\n" + folded + "Location: /good\r\n" + kEnd,
        interim + folded + "\r\n" + kOk + kEnd, interim + "\r\n" + kOk + folded + kEnd}) {
    const RawServer server([&](const RawRequest& request, RawConnection& connection) {
      if (request.target == "/good") {
        connection.Write(Response(200, "hello", "X-Long: " + kLong + "\r\n"));
      } else if (request.target == "/odd") {
        connection.Write(odd);
      } else {
        connection.Drip(odd, std::chrono::milliseconds(0));
      }
    });
    for (int i = 0; i < 3; ++i) {
      for (const char* target : {"/odd", "/odd-by-byte"}) {
        ExpectHello(server.Url("/good"));
        EXPECT_FALSE(Fetch(server.Url(target)).received) << odd;
        EXPECT_FALSE(FetchInBackground(server.Url(target)).received) << odd;
      }
    }
  }
}

TEST_F(RepeatedTransfersTest, AcceptsAContinuationOfAField) {
  const RawServer server(Always(kOk + ("X-Long: " + kLong) + "\r\n more: of it\r\n" + kEnd));
  for (int i = 0; i < 3; ++i) {
    InternetData transport(Text(server.Url()));
    EXPECT_TRUE(transport.Download());
    EXPECT_EQ(HeaderOf(transport, "X-Long"), kLong + " more: of it");
  }
}

TEST_F(RepeatedTransfersTest, AcceptsAResponseWithoutHeaders) {
  const RawServer server(AlwaysThenClose(std::string(kOk) + "\r\nhello"));
  for (int i = 0; i < 3; ++i) ExpectHello(server.Url());
}

TEST_F(RepeatedTransfersTest, RequestLeavesNothingInTheNext) {
  const RawServer server(Always(Response(200, "hello")));
  std::string with_user = server.Url();
  with_user.insert(with_user.find("//") + 2, "user:password@");
  InternetData first((Text(with_user)));
  first.SetValueForHTTPSendHeaders("X-Own", "1");
  EXPECT_TRUE(first.Download());
  EXPECT_NE(LastRequest(server).Header("Authorization"), "");
  SetSendData("data", first);
  EXPECT_TRUE(Post(server.Url(), first));
  InternetData second(Text(server.Url()));
  EXPECT_TRUE(second.Download());
  const RawRequest request = LastRequest(server);
  EXPECT_EQ(request.method, "GET");
  EXPECT_EQ(request.body, "");
  EXPECT_EQ(request.Header("Authorization"), "");
  EXPECT_EQ(request.Header("X-Own"), "");
  EXPECT_EQ(request.Header("Accept-Encoding"), "gzip");
}

TEST_F(RepeatedTransfersTest, ForgetsDefaultsThatAreReset) {
  const RawServer server(Always(Response(200, "hello")));
  TransferDefaults defaults;
  defaults.proxy = Text(server.Url());
  defaults.user_agent = "agent";
  InternetData::SetDefaults(defaults);
  ExpectHello("http://elsewhere.invalid/");
  EXPECT_EQ(LastRequest(server).Header("User-Agent"), "agent");
  InternetData::SetDefaults({});
  ExpectHello(server.Url("/direct"));
  EXPECT_EQ(LastRequest(server).target, "/direct");
  EXPECT_EQ(LastRequest(server).Header("User-Agent"), "");
}

// libcurl repeats such a request on another connection, but only a few times.
TEST_F(RepeatedTransfersTest, KeptConnectionsMayCloseAnyNumberOfTimes) {
  std::mutex mutex;
  std::set<int> used;
  const RawServer server([&](const RawRequest& request, RawConnection& connection) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (used.insert(request.connection).second) {
      connection.Write(Response(200, "hello"));
    } else {
      connection.EndWriting();
    }
  });
  for (int i = 0; i < 20; ++i) ExpectHello(server.Url());
}

TEST_F(RepeatedTransfersTest, ManyImpossibleTransfersDoNotHarmTheNext) {
  const RawServer server(Always(Response(200, "hello")));
  for (const char* url : {"none:", "http://127.0.0.1:99999/", "http://127.0.0.1/a b"}) {
    for (int i = 0; i < 100; ++i) EXPECT_FALSE(Fetch(url).received);
    ExpectHello(server.Url());
  }
}

}  // namespace
}  // namespace stowra_test

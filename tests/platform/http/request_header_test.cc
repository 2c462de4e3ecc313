// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

class RequestHeaderTest : public TransportTest {
 protected:
  // Give the request of a download, or of an upload of `data`.
  RawRequest Get() {
    EXPECT_TRUE(transport_.Download());
    return LastRequest(server_);
  }
  RawRequest Post(StringMap* headers = nullptr, const std::string& data = "data") {
    SetSendData(data, transport_);
    EXPECT_TRUE(stowra_test::Post(server_.Url(), transport_, headers));
    return LastRequest(server_);
  }

  const RawServer server_{Always(Response(200, ""))};
  InternetData transport_{Text(server_.Url())};
};

TEST_F(RequestHeaderTest, SameNameInAnyCaseReplacesTheValue) {
  transport_.SetValueForHTTPSendHeaders("X-Own", "1");
  transport_.SetValueForHTTPSendHeaders("X-Other", "2");
  transport_.SetValueForHTTPSendHeaders("x-oWN", "3");
  const RawRequest request = Get();
  EXPECT_EQ(request.Header("X-Own"), "3");
  EXPECT_EQ(request.Header("X-Other"), "2");
}

TEST_F(RequestHeaderTest, SendAndReadHeadersWinForOneTransfer) {
  transport_.SetValueForHTTPSendHeaders("X-One", "set");
  transport_.SetValueForHTTPSendHeaders("X-Two", "set");
  StringMap headers = {{"x-one", "passed"}, {"X-Three", "passed"}};
  RawRequest request = Post(&headers);
  EXPECT_EQ(request.Header("X-One"), "passed");
  EXPECT_EQ(request.Header("X-Two"), "set");
  EXPECT_EQ(request.Header("X-Three"), "passed");
  EXPECT_EQ(headers.size(), 2U);

  request = Post();
  EXPECT_EQ(request.Header("X-One"), "set");
  EXPECT_FALSE(request.HasHeader("X-Three"));
}

TEST_F(RequestHeaderTest, SendsOnlyNecessaryHeadersByDefault) {
  const RawRequest get = Get();
  for (const char* name : {"User-Agent", "Content-Type", "Content-Length", "Cookie", "Referer"}) {
    EXPECT_FALSE(get.HasHeader(name)) << name;
  }
  const RawRequest post = Post();
  const RawRequest large_post = Post(nullptr, std::string(2 << 20, 'x'));
  for (const char* name : {"Content-Type", "User-Agent", "Expect"}) {
    EXPECT_FALSE(post.HasHeader(name)) << name;
    EXPECT_FALSE(large_post.HasHeader(name)) << name;
  }
}

TEST_F(RequestHeaderTest, IgnoresFramingHeadersOfTheHost) {
  transport_.SetValueForHTTPSendHeaders("Content-Length", "1000");
  transport_.SetValueForHTTPSendHeaders("content-length", "1000");
  transport_.SetValueForHTTPSendHeaders("Transfer-Encoding", "chunked");
  StringMap headers = {{"CONTENT-LENGTH", "1"}};
  const RawRequest request = Post(&headers);
  EXPECT_EQ(request.Header("Content-Length"), "4");
  EXPECT_FALSE(request.HasHeader("Transfer-Encoding"));
  EXPECT_EQ(request.body, "data");
  EXPECT_FALSE(Get().HasHeader("Content-Length"));
}

TEST_F(RequestHeaderTest, EmptyOrBlankValueIsSentAsEmpty) {
  for (const char* value : {"", " \t "}) {
    transport_.SetValueForHTTPSendHeaders("X-Empty", value);
    const RawRequest request = Get();
    EXPECT_TRUE(request.HasHeader("X-Empty")) << value;
    EXPECT_EQ(request.Header("X-Empty"), "");
  }
}

TEST_F(RequestHeaderTest, AreSentAsTheHostSetsThem) {
  const std::pair<const char*, const char*> kHeaders[] = {
      {"X-Own", "a: b; c=\"d\", e\tf"},
      {"X-Unicode", "\xC3\xA9\xE2\x82\xAC"},
      {"X-!#$%&'*+.^_`|~1", "odd name"},
      {"Accept-Encoding", "identity"},
      {"Expect", "nothing"},
  };
  for (const auto& [name, value] : kHeaders) transport_.SetValueForHTTPSendHeaders(name, value);
  for (const RawRequest& request : {Get(), Post()}) {
    for (const auto& [name, value] : kHeaders) EXPECT_EQ(request.Header(name), value);
    EXPECT_EQ(request.body, request.method == "POST" ? "data" : "");
  }
}

TEST_F(RequestHeaderTest, InvalidHeaderFailsTheTransfer) {
  const std::pair<std::string, std::string> kHeaders[] = {{"X-Own", "a\r\nX-Injected: 1"},
                                                          {"X-Own", "a\nX-Injected: 1"},
                                                          {"X-Own", "a\rb"},
                                                          {"X-Own", std::string("a\0b", 3)},
                                                          {"X-Own\r\nX-Injected", "1"},
                                                          {"X-Own: 1\r\nX-Injected", "1"},
                                                          {"X Own", "1"},
                                                          {"X-Own:", "1"},
                                                          {"", "1"},
                                                          {"X-\xC3\xA9", "1"},
                                                          {std::string("X\0Y", 3), "1"}};
  for (const auto& [name, value] : kHeaders) {
    InternetData transport(Text(server_.Url()));
    transport.SetValueForHTTPSendHeaders(Text(name), Text(value));
    EXPECT_FALSE(transport.Download()) << name << " = " << value;
    EXPECT_EQ(InternetData::LastError(), ovrant::internet::TransferError::kBadUrl) << name;
    ExpectFailureState(transport);
    Background background(server_.Url());
    background.transport->SetValueForHTTPSendHeaders(Text(name), Text(value));
    EXPECT_EQ(background.Upload(""), kFailed) << name << " = " << value;
    StringMap headers = {{Text(name), Text(value)}};
    EXPECT_FALSE(stowra_test::Post(server_.Url(), transport_, &headers)) << name << " = " << value;
  }
  EXPECT_EQ(server_.connections(), 0);
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

class RequestHeaderTest : public TransportTest {
 protected:
  // Gives the request of a download.
  RawRequest Get(InternetData& transport) {
    EXPECT_TRUE(transport.Download());
    return LastRequest(server_);
  }

  // Gives the request of an upload of "data".
  RawRequest Post(InternetData& transport, StringMap* headers = nullptr) {
    SetSendData("data", transport);
    EXPECT_TRUE(transport.SendAndRead(Text(server_.Url()), nullptr, nullptr, nullptr, headers,
                                      false, false, true, "", "", nullptr));
    return LastRequest(server_);
  }

  const RawServer server_{Always(Response(200, ""))};
  InternetData transport_{Text(server_.Url())};
};

TEST_F(RequestHeaderTest, AreSentWithDownloadsAndUploads) {
  transport_.SetValueForHTTPSendHeaders("X-Own", "some value");
  EXPECT_EQ(Get(transport_).Header("X-Own"), "some value");
  EXPECT_EQ(Post(transport_).Header("X-Own"), "some value");
  Background background(server_.Url());
  background.transport->SetValueForHTTPSendHeaders("Content-Type", "application/json");
  ASSERT_TRUE(background.transport->UploadWithDelegate(background.delegate.get(), nullptr));
  EXPECT_EQ(background.WaitForEnd(), kReturned);
  EXPECT_EQ(LastRequest(server_).Header("Content-Type"), "application/json");
}

TEST_F(RequestHeaderTest, SameNameInAnyCaseReplacesTheValue) {
  transport_.SetValueForHTTPSendHeaders("X-Own", "1");
  transport_.SetValueForHTTPSendHeaders("X-Other", "2");
  transport_.SetValueForHTTPSendHeaders("x-oWN", "3");
  const RawRequest request = Get(transport_);
  EXPECT_EQ(request.Header("X-Own"), "3");
  EXPECT_EQ(request.Header("X-Other"), "2");
}

TEST_F(RequestHeaderTest, SendAndReadHeadersWinForOneTransfer) {
  transport_.SetValueForHTTPSendHeaders("X-One", "set");
  transport_.SetValueForHTTPSendHeaders("X-Two", "set");
  StringMap headers;
  headers["x-one"] = "passed";
  headers["X-Three"] = "passed";
  RawRequest request = Post(transport_, &headers);
  EXPECT_EQ(request.Header("X-One"), "passed");
  EXPECT_EQ(request.Header("X-Two"), "set");
  EXPECT_EQ(request.Header("X-Three"), "passed");
  EXPECT_EQ(headers.size(), 2U);

  request = Post(transport_);
  EXPECT_EQ(request.Header("X-One"), "set");
  EXPECT_FALSE(request.HasHeader("X-Three"));
}

TEST_F(RequestHeaderTest, SendsOnlyNecessaryHeadersByDefault) {
  const RawRequest get = Get(transport_);
  EXPECT_FALSE(get.HasHeader("User-Agent"));
  EXPECT_FALSE(get.HasHeader("Content-Type"));
  EXPECT_FALSE(get.HasHeader("Content-Length"));
  EXPECT_FALSE(get.HasHeader("Cookie"));
  EXPECT_FALSE(get.HasHeader("Referer"));
  const RawRequest post = Post(transport_);
  EXPECT_FALSE(post.HasHeader("Content-Type"));
  EXPECT_FALSE(post.HasHeader("User-Agent"));
  EXPECT_FALSE(post.HasHeader("Expect"));
}

TEST_F(RequestHeaderTest, LargeUploadSendsNoExpect) {
  SetSendData(std::string(2 << 20, 'x'), transport_);
  EXPECT_TRUE(transport_.SendAndRead(Text(server_.Url()), nullptr, nullptr, nullptr, nullptr, false,
                                     false, true, "", "", nullptr));
  EXPECT_FALSE(LastRequest(server_).HasHeader("Expect"));
}

TEST_F(RequestHeaderTest, IgnoresFramingHeadersOfTheHost) {
  transport_.SetValueForHTTPSendHeaders("Content-Length", "1000");
  transport_.SetValueForHTTPSendHeaders("content-length", "1000");
  transport_.SetValueForHTTPSendHeaders("Transfer-Encoding", "chunked");
  StringMap headers;
  headers["CONTENT-LENGTH"] = "1";
  const RawRequest request = Post(transport_, &headers);
  EXPECT_EQ(request.Header("Content-Length"), "4");
  EXPECT_FALSE(request.HasHeader("Transfer-Encoding"));
  EXPECT_EQ(request.body, "data");
  EXPECT_FALSE(Get(transport_).HasHeader("Content-Length"));
}

TEST_F(RequestHeaderTest, EmptyValueIsSentAsEmpty) {
  transport_.SetValueForHTTPSendHeaders("X-Empty", "");
  const RawRequest request = Get(transport_);
  EXPECT_TRUE(request.HasHeader("X-Empty"));
  EXPECT_EQ(request.Header("X-Empty"), "");
}

TEST_F(RequestHeaderTest, ValueOfBlanksIsSentAsEmpty) {
  transport_.SetValueForHTTPSendHeaders("X-Blank", " \t ");
  const RawRequest request = Get(transport_);
  EXPECT_TRUE(request.HasHeader("X-Blank"));
  EXPECT_EQ(request.Header("X-Blank"), "");
}

TEST_F(RequestHeaderTest, KeepsEveryValidCharacterOfAValue) {
  transport_.SetValueForHTTPSendHeaders("X-Own", "a: b; c=\"d\", e\tf");
  transport_.SetValueForHTTPSendHeaders("X-Unicode", "\xC3\xA9\xE2\x82\xAC");
  transport_.SetValueForHTTPSendHeaders("X-!#$%&'*+.^_`|~1", "odd name");
  const RawRequest request = Get(transport_);
  EXPECT_EQ(request.Header("X-Own"), "a: b; c=\"d\", e\tf");
  EXPECT_EQ(request.Header("X-Unicode"), "\xC3\xA9\xE2\x82\xAC");
  EXPECT_EQ(request.Header("X-!#$%&'*+.^_`|~1"), "odd name");
}

TEST_F(RequestHeaderTest, InvalidHeaderFailsTheTransfer) {
  const struct {
    std::string name;
    std::string value;
  } kCases[] = {{"X-Own", "a\r\nX-Injected: 1"},
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
  for (const auto& item : kCases) {
    InternetData transport(Text(server_.Url()));
    transport.SetValueForHTTPSendHeaders(Text(item.name), Text(item.value));
    EXPECT_FALSE(transport.Download()) << item.name << " = " << item.value;
    ExpectFailureState(transport);
    Background background(server_.Url());
    background.transport->SetValueForHTTPSendHeaders(Text(item.name), Text(item.value));
    ASSERT_TRUE(background.transport->UploadWithDelegate(background.delegate.get(), nullptr));
    EXPECT_EQ(background.WaitForEnd(), kFailed);
    StringMap headers;
    headers[Text(item.name)] = Text(item.value);
    InternetData sender(Text("none:"));
    EXPECT_FALSE(sender.SendAndRead(Text(server_.Url()), nullptr, nullptr, nullptr, &headers, false,
                                    false, true, "", "", nullptr));
  }
  EXPECT_EQ(server_.connections(), 0);
}

}  // namespace
}  // namespace stowra_test

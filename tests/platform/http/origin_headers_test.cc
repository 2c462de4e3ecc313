// SPDX-License-Identifier: MIT
// Headers that the host sets for one origin.

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

class OriginHeadersTest : public TransportTest {
 protected:
  void SetFor(const std::string& url, const char* name, const char* value) {
    defaults_.origin_request_headers[Text(url)][name] = value;
    InternetData::SetDefaults(defaults_);
  }

  TransferDefaults defaults_;
  const RawServer other_{Always(Response(200, "hello"))};
  const RawServer server_{RedirectTo(other_.Url())};
};

TEST_F(OriginHeadersTest, GoToTheirOriginOnly) {
  SetFor(server_.Url("/any/path?x"), "Authorization", "first");
  SetFor(other_.Url(""), "X-Other", "second");
  for (const Way way : kAllWays) {
    EXPECT_EQ(ReasonOf(way, server_.Url("/from")), TransferError::kNone);
    EXPECT_EQ(LastRequest(server_).Header("Authorization"), "first");
    EXPECT_FALSE(LastRequest(server_).HasHeader("X-Other"));
    EXPECT_EQ(LastRequest(other_).Header("X-Other"), "second");
    EXPECT_FALSE(LastRequest(other_).HasHeader("Authorization"));
  }
}

TEST_F(OriginHeadersTest, SchemeAndHostOfTheKeyIgnoreCase) {
  SetFor("HTTP://LocalHost:" + std::to_string(server_.port()), "X-Key", "1");
  EXPECT_TRUE(Fetch("http://localhost:" + std::to_string(server_.port()) + "/").received);
  EXPECT_EQ(LastRequest(server_).Header("X-Key"), "1");
}

TEST_F(OriginHeadersTest, KeysThatAreNoOriginMatchNothing) {
  for (const char* key : {"", "127.0.0.1", "http://", "ftp://127.0.0.1/", "none:"}) {
    SetFor(key, "X-Key", "1");
  }
  EXPECT_TRUE(Fetch(server_.Url()).received);
  EXPECT_FALSE(LastRequest(server_).HasHeader("X-Key"));
}

TEST_F(OriginHeadersTest, WinOverTheCommonOnes) {
  defaults_.extra_request_headers["x-both"] = "common";
  SetFor(server_.Url(), "X-Both", "origin");
  EXPECT_TRUE(Fetch(server_.Url()).received);
  EXPECT_EQ(LastRequest(server_).Header("X-Both"), "origin");
}

TEST_F(OriginHeadersTest, LoseToTheHeadersOfTheRequest) {
  SetFor(server_.Url(), "X-Set", "origin");
  SetFor(server_.Url(), "X-Passed", "origin");
  InternetData transport(Text(server_.Url()));
  transport.SetValueForHTTPSendHeaders("x-set", "own");
  StringMap passed = {{"x-passed", "own"}};
  EXPECT_TRUE(Post(server_.Url(), transport, &passed));
  EXPECT_EQ(LastRequest(server_).Header("X-Set"), "own");
  EXPECT_EQ(LastRequest(server_).Header("X-Passed"), "own");
}

// The request's own header stays at the first origin, so nothing is there to win.
TEST_F(OriginHeadersTest, AreNotReplacedByHeadersThatStayBehind) {
  SetFor(other_.Url(), "Authorization", "origin");
  InternetData transport(Text(server_.Url("/from")));
  transport.SetValueForHTTPSendHeaders("Authorization", "own");
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(LastRequest(server_).Header("Authorization"), "own");
  EXPECT_EQ(LastRequest(other_).Header("Authorization"), "origin");
}

}  // namespace
}  // namespace stowra_test

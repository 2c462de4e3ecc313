// SPDX-License-Identifier: MIT
// UploadConfig::SynchronousQuery over a connection.

#include <gtest/gtest.h>

#include <string>

#include "common_stowraapi/content/upload_config.h"
#include "tests/content/fields.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::UploadConfig;

constexpr char kGood[] =
    "<upload><successUrl>s</successUrl><failureUrl>f</failureUrl><files><file>"
    "<uploadUrl>u</uploadUrl><type>t</type></file></files></upload>";
constexpr char kWithoutType[] =
    "<upload><successUrl>s</successUrl><failureUrl>f</failureUrl><files><file>"
    "<uploadUrl>u</uploadUrl><type>t</type></file><file><uploadUrl>u</uploadUrl></file></files>"
    "</upload>";

class UploadQueryTest : public testing::Test {
 protected:
  // Holds the results of an earlier query.
  UploadQueryTest() { Fill(); }

  void Fill() {
    Bytes bytes(kGood);
    config.Clear();
    EXPECT_TRUE(config.ParseResponse(bytes.data(), bytes.size()));
  }

  void SetUrl(const RawServer& server, const std::string& target = "/") {
    config.url_ = Text(server.Url(target));
  }

  void ExpectEmpty() { EXPECT_EQ(Fields(config), std::make_tuple(config.url_, "", "", 0U)); }

  UploadConfig config;
};

TEST_F(UploadQueryTest, GetsTheConfiguration) {
  const RawServer server(Always(Response(200, kGood)));
  config.Init(Text(server.Url("/config?x=y")));
  EXPECT_TRUE(config.SynchronousQuery());
  EXPECT_EQ(Fields(config), std::make_tuple(Text(server.Url("/config?x=y")), "s", "f", 1U));
  ASSERT_EQ(server.requests().size(), 1U);
  EXPECT_EQ(server.requests()[0].method, "GET");
  EXPECT_EQ(server.requests()[0].target, "/config?x=y");
}

TEST_F(UploadQueryTest, AppendsWithoutInit) {
  const RawServer server(Always(Response(200, kGood)));
  SetUrl(server);
  EXPECT_TRUE(config.SynchronousQuery());
  EXPECT_EQ(config.files_.size(), 2U);
}

TEST_F(UploadQueryTest, ABadDocumentClearsWhateverItsStatus) {
  for (const int status : {200, 404}) {
    for (const char* const body : {"", "not found", "<html/>", kWithoutType}) {
      Fill();
      const RawServer server(Always(Response(status, body)));
      SetUrl(server);
      EXPECT_FALSE(config.SynchronousQuery()) << status << body;
      ExpectEmpty();
      EXPECT_EQ(config.url_, Text(server.Url()));
    }
  }
}

TEST_F(UploadQueryTest, ARedirectIsFollowed) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.target == "/from" ? Response(301, "moved", "Location: /to\r\n")
                                               : Response(200, kGood));
  });
  config.Init(Text(server.Url("/from")));
  EXPECT_TRUE(config.SynchronousQuery());
  EXPECT_EQ(config.files_.size(), 1U);
}

TEST_F(UploadQueryTest, ATransferThatFailsClears) {
  const std::string cut = Response(200, kGood);
  const RawServer server(AlwaysThenClose(cut.substr(0, cut.size() - 1)));
  SetUrl(server);
  EXPECT_FALSE(config.SynchronousQuery());
  ExpectEmpty();
  for (const char* const url : {"", "no url", "file:///etc/passwd"}) {
    Fill();
    config.url_ = url;
    EXPECT_FALSE(config.SynchronousQuery()) << url;
    ExpectEmpty();
    EXPECT_EQ(config.url_, url);
  }
}

TEST_F(UploadQueryTest, MayBeRepeatedAfterAFailure) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(Response(200, request.connection == 0 ? "busy" : kGood));
    connection.Close();
  });
  SetUrl(server);
  EXPECT_FALSE(config.SynchronousQuery());
  EXPECT_TRUE(config.SynchronousQuery());
  EXPECT_EQ(config.files_.size(), 1U);
}

}  // namespace
}  // namespace stowra_test

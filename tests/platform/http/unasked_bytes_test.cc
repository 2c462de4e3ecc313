// SPDX-License-Identifier: MIT
// Bytes that a server sends on a kept connection without a request.

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "common_stowraapi/platform/body_sink.h"
#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/client_socket.h"

namespace stowra_test {
namespace {

struct Unasked {
  const char* name;
  std::string bytes;
};

// Answers with the target. Sends `bytes` too when the first reply has been read.
RawServer::Handler SendUnasked(const std::string& bytes, Event& first_ended) {
  return [bytes, &first_ended](const RawRequest& request, RawConnection& connection) {
    connection.Write(Response(200, request.target));
    if (request.target != "/first") return;
    EXPECT_TRUE(first_ended.Wait());
    connection.Write(bytes);
  };
}

class UnaskedBytesTest : public TrustingTest,
                         public ::testing::WithParamInterface<std::tuple<Way, Unasked>> {
 protected:
  // Asks twice. The server sends the bytes after its first reply.
  void ExpectOwnReplies(const RawServer::Options& options) const {
    const auto& [way, unasked] = GetParam();
    Event first_ended;
    const RawServer server(SendUnasked(unasked.bytes, first_ended), options);
    EXPECT_EQ(Ask(way, server.Url("/first"), "data"), Received(200, "/first"));
    first_ended.Set();
    ASSERT_TRUE(WaitForBytes(server.port()));
    EXPECT_EQ(Ask(way, server.Url("/second"), "data"), Received(200, "/second"));
    EXPECT_EQ(server.connections(), 2);
  }
};

TEST_P(UnaskedBytesTest, AreNotTheNextReply) { ExpectOwnReplies({}); }

TEST_P(UnaskedBytesTest, AreNotTheNextReplyOverHttps) { ExpectOwnReplies(tls_); }

INSTANTIATE_TEST_SUITE_P(
    Ways, UnaskedBytesTest,
    ::testing::Combine(::testing::ValuesIn(kAllWays),
                       ::testing::Values(Unasked{"Response", Response(200, "unasked")},
                                         Unasked{"Timeout",
                                                 Response(408, "", "Connection: close\r\n")},
                                         Unasked{"LineEnd", "\r\n"})),
    [](const auto& test) {
      return std::string(NameOf(std::get<0>(test.param))) + std::get<1>(test.param).name;
    });

// Wants a rest the first time that it is asked, and the whole later.
class SinkOfARest : public ovrant::internet::BodySink {
 public:
  StringMap RequestHeaders() override {
    return asked_++ == 0 ? StringMap{{"Range", "bytes=1-"}} : StringMap();
  }
  bool Write(const unsigned char* /*data*/, std::size_t /*size*/) override { return true; }

  int asked() const { return asked_; }

 private:
  int asked_ = 0;
};

// The bytes are found after the sink was asked.
TEST_F(TransportTest, ASinkIsAskedAnewWhenAKeptConnectionIsUnfit) {
  Event first_ended;
  const RawServer server(SendUnasked("\r\n", first_ended));
  EXPECT_EQ(Ask(Way::kDownload, server.Url("/first"), ""), Received(200, "/first"));
  first_ended.Set();
  ASSERT_TRUE(WaitForBytes(server.port()));
  SinkOfARest sink;
  InternetData transport(Text(server.Url("/second")));
  EXPECT_TRUE(transport.DownloadTo(sink));
  EXPECT_EQ(sink.asked(), 2);
  EXPECT_FALSE(LastRequest(server).HasHeader("Range"));
}

using ReuseTest = TrustingTest;

TEST_F(ReuseTest, UsesOneConnectionWithoutSuchBytes) {
  for (const Way way : kAllWays) {
    for (const RawServer::Options& options : {RawServer::Options(), tls_}) {
      const RawServer server(Always(Response(200, "hello")), options);
      for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Ask(way, server.Url(), "data"), Received(200, "hello"));
      }
      EXPECT_EQ(server.connections(), 1) << NameOf(way);
    }
  }
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

class ContentEncodingTest : public TransportTest {
 protected:
  // Downloads a gzip stream of "hello" with this header.
  static Answer GetHello(const std::string& name, const char* value) {
    const RawServer server(
        AlwaysThenClose("HTTP/1.1 200 OK\r\n" + name + ": " + value + "\r\n\r\n" + Gzip("hello")));
    return Get(server.Url());
  }
};

TEST_F(ContentEncodingTest, OffersOnlyGzip) {
  const RawServer server(Always(Response(200, "")));
  EXPECT_TRUE(Get(server.Url()).received);
  EXPECT_EQ(LastRequest(server).Header("Accept-Encoding"), "gzip");
  EXPECT_FALSE(LastRequest(server).HasHeader("TE"));
}

TEST_F(ContentEncodingTest, DecodesGzipInAnySpelling) {
  for (const char* value : {"gzip", "GZip", "x-gzip", " gzip\t"}) {
    EXPECT_EQ(GetHello("Content-Encoding", value), Received(200, "hello")) << value;
  }
}

TEST_F(ContentEncodingTest, RefusesOtherEncodings) {
  const Answer refused = Failed(200, TransferError::kEncoding);
  for (const char* value :
       {"br", "deflate", "zstd", "compress", "gzip, gzip", "gzip, br", "br, gzip", "identity, gzip",
        "rot13", "gzip;q=1", "gzip\r\nContent-Encoding: gzip"}) {
    EXPECT_EQ(GetHello("Content-Encoding", value), refused) << value;
  }
  for (const char* value : {"gzip", "gzip, chunked", "deflate", "chunked, gzip"}) {
    EXPECT_EQ(GetHello("Transfer-Encoding", value), refused) << value;
  }
}

}  // namespace
}  // namespace stowra_test

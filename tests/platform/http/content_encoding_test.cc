// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/handlers.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

// Text that compresses a little, so that there are bytes to cut.
std::string LongText() {
  std::string text;
  for (int i = 0; i < 20'000; ++i) text += std::to_string(i * 7919) + " ";
  return text;
}

class ContentEncodingTest : public TransportTest {
 protected:
  // Downloads `response`. Gives the body, after "+" when it was received.
  static std::string Download(const std::string& response) {
    const RawServer server(AlwaysThenClose(response));
    const Answer answer = Ask(Way::kDownload, server.Url(), "");
    EXPECT_EQ(answer.status, 200);
    return answer.received ? "+" + answer.body : "failed";
  }
  static std::string Encoded(const std::string& encoding, const std::string& body) {
    return Download(Response(200, body, "Content-Encoding: " + encoding + "\r\n"));
  }
};

TEST_F(ContentEncodingTest, OffersOnlyGzip) {
  const RawServer server(Always(Response(200, "")));
  EXPECT_TRUE(Get(server.Url()).received);
  EXPECT_EQ(LastRequest(server).Header("Accept-Encoding"), "gzip");
  EXPECT_FALSE(LastRequest(server).HasHeader("TE"));
}

TEST_F(ContentEncodingTest, DecodesGzipInAnySpelling) {
  for (const char* name : {"gzip", "GZip", "x-gzip", " gzip\t"}) {
    EXPECT_EQ(Encoded(name, Gzip("hello")), "+hello") << name;
  }
}

TEST_F(ContentEncodingTest, DecodesGzipInEveryFraming) {
  const std::string text = LongText();
  const std::string body = Gzip(text);
  EXPECT_TRUE(Encoded("gzip", body) == "+" + text);
  EXPECT_TRUE(Download("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n" + body) == "+" + text);
  std::string chunks =
      "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (const char byte : body) chunks += std::string("1\r\n") + byte + "\r\n";
  EXPECT_TRUE(Download(chunks + "0\r\n\r\n") == "+" + text);
}

TEST_F(ContentEncodingTest, DecodesGzipThatArrivesByteByByte) {
  const std::string response = Response(200, Gzip("hello"), kGzipHeader);
  const RawServer server([&response](const RawRequest&, RawConnection& connection) {
    connection.Drip(response, std::chrono::milliseconds(1));
  });
  EXPECT_EQ(Get(server.Url()), Received(200, "hello"));
}

TEST_F(ContentEncodingTest, DecodesEveryMemberOfAGzipStream) {
  EXPECT_EQ(Encoded("gzip", Gzip("one ") + Gzip("") + Gzip("two")), "+one two");
}

TEST_F(ContentEncodingTest, EmptyGzipIsAnEmptyBody) {
  EXPECT_EQ(Encoded("gzip", Gzip("")), "+");
  EXPECT_EQ(Encoded("gzip", ""), "+");
}

TEST_F(ContentEncodingTest, AcceptsIdentity) {
  EXPECT_EQ(Encoded("identity", "hello"), "+hello");
  EXPECT_EQ(Download(Response(200, "hello", "Content-Encoding:\r\n")), "+hello");
}

TEST_F(ContentEncodingTest, RefusesGzipTruncatedAnywhere) {
  const std::string body = Gzip("hello world, hello world");
  for (std::size_t length = 1; length < body.size(); ++length) {
    EXPECT_EQ(Encoded("gzip", body.substr(0, length)), "failed") << length;
  }
  const std::string two = body + Gzip("more");
  EXPECT_EQ(Encoded("gzip", two.substr(0, body.size() + 5)), "failed");
  const std::string large = Gzip(LongText());
  EXPECT_EQ(Encoded("gzip", large.substr(0, large.size() / 2)), "failed");
}

TEST_F(ContentEncodingTest, RefusesCorruptGzip) {
  const std::string body = Gzip(LongText());
  // The header, the data, the checksum and the length.
  for (const std::size_t place :
       {std::size_t{0}, std::size_t{2}, body.size() / 2, body.size() - 7, body.size() - 2}) {
    std::string corrupt = body;
    corrupt[place] = static_cast<char>(corrupt[place] ^ 0x55);
    EXPECT_EQ(Encoded("gzip", corrupt), "failed") << place;
  }
  EXPECT_EQ(Encoded("gzip", "hello"), "failed");
  EXPECT_EQ(Encoded("gzip", Deflate("hello")), "failed");
  EXPECT_EQ(Encoded("gzip", Gzip("hello") + "garbage"), "failed");
  EXPECT_EQ(Encoded("gzip", Gzip("hello") + std::string(10, '\0')), "failed");
}

TEST_F(ContentEncodingTest, RefusesOtherEncodings) {
  for (const char* name : {"br", "deflate", "zstd", "compress", "gzip, gzip", "gzip, br",
                           "br, gzip", "identity, gzip", "rot13", "gzip;q=1"}) {
    EXPECT_EQ(Encoded(name, Gzip("hello")), "failed") << name;
  }
  EXPECT_EQ(Encoded("deflate", Deflate("hello")), "failed");
  EXPECT_EQ(Download(Response(200, Gzip(Gzip("hello")), std::string(kGzipHeader) + kGzipHeader)),
            "failed");
}

TEST_F(ContentEncodingTest, RefusesGzipAsTransferEncoding) {
  for (const char* name : {"gzip", "gzip, chunked", "deflate", "chunked, gzip"}) {
    EXPECT_EQ(Download("HTTP/1.1 200 OK\r\nTransfer-Encoding: " + std::string(name) + "\r\n\r\n" +
                       Gzip("hello")),
              "failed")
        << name;
  }
}

TEST_F(ContentEncodingTest, IgnoresTheEncodingOfARedirect) {
  const RawServer server(
      FirstThen(Response(302, Gzip("moved"), std::string("Location: /next\r\n") + kGzipHeader),
                Response(200, "plain")));
  EXPECT_EQ(Get(server.Url()), Received(200, "plain"));
}

}  // namespace
}  // namespace stowra_test

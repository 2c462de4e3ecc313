// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

constexpr char kGzipHeader[] = "Content-Encoding: gzip\r\n";

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
    InternetData transport(Text(server.Url()));
    if (transport.Download()) return "+" + BodyOf(transport);
    ExpectFailureState(transport, 200);
    return "failed";
  }
};

TEST_F(ContentEncodingTest, OffersOnlyGzip) {
  const RawServer server(Always(Response(200, "")));
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(server.requests().at(0).Header("Accept-Encoding"), "gzip");
  EXPECT_FALSE(server.requests().at(0).HasHeader("TE"));
}

TEST_F(ContentEncodingTest, DecodesGzipInAnySpelling) {
  for (const char* name : {"gzip", "GZip", "x-gzip", " gzip\t"}) {
    EXPECT_EQ(
        Download(Response(200, Gzip("hello"), "Content-Encoding: " + std::string(name) + "\r\n")),
        "+hello")
        << name;
  }
}

TEST_F(ContentEncodingTest, DecodesGzipInEveryFraming) {
  const std::string text = LongText();
  const std::string body = Gzip(text);
  EXPECT_TRUE(Download(Response(200, body, kGzipHeader)) == "+" + text);
  EXPECT_TRUE(Download("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n" + body) == "+" + text);
  std::string chunks =
      "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (const char byte : body) chunks += std::string("1\r\n") + byte + "\r\n";
  chunks += "0\r\n\r\n";
  EXPECT_TRUE(Download(chunks) == "+" + text);
}

TEST_F(ContentEncodingTest, DecodesGzipThatArrivesByteByByte) {
  const std::string response = Response(200, Gzip("hello"), kGzipHeader);
  const RawServer server([&response](const RawRequest&, RawConnection& connection) {
    connection.Drip(response, std::chrono::milliseconds(1));
  });
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(BodyOf(transport), "hello");
}

TEST_F(ContentEncodingTest, DecodesEveryMemberOfAGzipStream) {
  EXPECT_EQ(Download(Response(200, Gzip("one ") + Gzip("") + Gzip("two"), kGzipHeader)),
            "+one two");
}

TEST_F(ContentEncodingTest, EmptyGzipIsAnEmptyBody) {
  EXPECT_EQ(Download(Response(200, Gzip(""), kGzipHeader)), "+");
  EXPECT_EQ(Download(Response(200, "", kGzipHeader)), "+");
}

TEST_F(ContentEncodingTest, AcceptsIdentity) {
  EXPECT_EQ(Download(Response(200, "hello", "Content-Encoding: identity\r\n")), "+hello");
  EXPECT_EQ(Download(Response(200, "hello", "Content-Encoding:\r\n")), "+hello");
}

TEST_F(ContentEncodingTest, RefusesGzipTruncatedAnywhere) {
  const std::string body = Gzip("hello world, hello world");
  for (std::size_t length = 1; length < body.size(); ++length) {
    EXPECT_EQ(Download(Response(200, body.substr(0, length), kGzipHeader)), "failed") << length;
  }
  const std::string two = body + Gzip("more");
  EXPECT_EQ(Download(Response(200, two.substr(0, body.size() + 5), kGzipHeader)), "failed");
  const std::string large = Gzip(LongText());
  EXPECT_EQ(Download(Response(200, large.substr(0, large.size() / 2), kGzipHeader)), "failed");
}

TEST_F(ContentEncodingTest, RefusesCorruptGzip) {
  const std::string body = Gzip(LongText());
  // The header, the data, the checksum and the length.
  for (const std::size_t place :
       {std::size_t{0}, std::size_t{2}, body.size() / 2, body.size() - 7, body.size() - 2}) {
    std::string corrupt = body;
    corrupt[place] = static_cast<char>(corrupt[place] ^ 0x55);
    EXPECT_EQ(Download(Response(200, corrupt, kGzipHeader)), "failed") << place;
  }
  EXPECT_EQ(Download(Response(200, "hello", kGzipHeader)), "failed");
  EXPECT_EQ(Download(Response(200, Deflate("hello"), kGzipHeader)), "failed");
  EXPECT_EQ(Download(Response(200, Gzip("hello") + "garbage", kGzipHeader)), "failed");
  EXPECT_EQ(Download(Response(200, Gzip("hello") + std::string(10, '\0'), kGzipHeader)), "failed");
}

TEST_F(ContentEncodingTest, RefusesOtherEncodings) {
  for (const char* name : {"br", "deflate", "zstd", "compress", "gzip, gzip", "gzip, br",
                           "br, gzip", "identity, gzip", "rot13", "gzip;q=1"}) {
    EXPECT_EQ(
        Download(Response(200, Gzip("hello"), "Content-Encoding: " + std::string(name) + "\r\n")),
        "failed")
        << name;
  }
  EXPECT_EQ(Download(Response(200, Deflate("hello"), "Content-Encoding: deflate\r\n")), "failed");
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
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    if (request.target == "/") {
      connection.Write(
          Response(302, Gzip("moved"), std::string("Location: /next\r\n") + kGzipHeader));
    } else {
      connection.Write(Response(200, "plain"));
    }
  });
  InternetData transport(Text(server.Url()));
  EXPECT_TRUE(transport.Download());
  EXPECT_EQ(BodyOf(transport), "plain");
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include "emulator/replay/har.h"

#include "emulator/replay/base64.h"
#include "tests/emulator/emulator_test.h"

namespace stowra_emulator {
namespace {

// An archive of one entry, with these members of a response besides its status.
std::string ArchiveWith(const std::string& response, const std::string& method = "GET") {
  return R"({"log": {"version": "1.2", "entries": [{"time": 12.7, "request": {"method": ")" +
         method + R"(", "url": "https://h.example:1/p?q=1#f", "headers": []},
           "response": {"status": 200, )" +
         response + "}}]}}";
}

Exchange ReadOne(const std::string& archive) { return ParseHar(archive).at(0); }

TEST(Base64Test, EncodesAndDecodesEveryLength) {
  EXPECT_EQ(EncodeBase64(""), "");
  EXPECT_EQ(EncodeBase64("f"), "Zg==");
  EXPECT_EQ(EncodeBase64("fo"), "Zm8=");
  EXPECT_EQ(EncodeBase64("foo"), "Zm9v");
  std::string bytes;
  for (int i = 0; i < 300; ++i) {
    EXPECT_EQ(DecodeBase64(EncodeBase64(bytes)), bytes);
    bytes += static_cast<char>(i * 7);
  }
}

TEST(Base64Test, RefusesOtherText) {
  for (const char* text : {"Zg", "Zg=", "Z!==", "Zm9vZ"}) {
    EXPECT_EQ(DecodeBase64(text), std::nullopt) << text;
  }
}

TEST(HarTest, ExchangeComesBackAsItWas) {
  std::string every_byte;
  for (int i = 0; i < 256; ++i) every_byte += static_cast<char>(i);
  for (const std::string& body : {std::string(), std::string("{\"ö\": 1}\r\n"), every_byte}) {
    Exchange exchange;
    exchange.site = "http://h.example";
    exchange.started = "2024-01-31T09:00:00.000Z";
    exchange.request = {"POST", "/p?q=%20", {{"A", "1"}, {"a", "2"}}, body};
    exchange.response.status = 201;
    exchange.response.reason = "Made it";
    exchange.response.fields = {{"X", "ä"},
                                {"Y", "\xFF"},
                                {"Content-Encoding", "gzip"},
                                {"Content-Length", std::to_string(body.size())}};
    exchange.response.body = body;
    exchange.response.delay = std::chrono::milliseconds(42);
    const nlohmann::ordered_json archive = {{"log", {{"entries", {ToHarEntry(exchange)}}}}};
    const Exchange read = ReadOne(archive.dump());
    EXPECT_EQ(read.site, exchange.site);
    EXPECT_EQ(read.started, exchange.started);
    EXPECT_EQ(read.request.method, "POST");
    EXPECT_EQ(read.request.target, exchange.request.target);
    EXPECT_EQ(read.request.fields, exchange.request.fields);
    EXPECT_EQ(read.request.body, body);
    EXPECT_EQ(read.response.Head(), exchange.response.Head());
    EXPECT_EQ(read.response.body, body);
    EXPECT_EQ(read.response.delay, exchange.response.delay);
  }
}

TEST(HarTest, FitsWhatABrowserSaves) {
  const Exchange exchange = ReadOne(ArchiveWith(
      R"("statusText": "", "headers": [{"name": ":status", "value": "200"},
         {"name": "content-encoding", "value": "br"}, {"name": "transfer-encoding", "value": "x"},
         {"name": "content-length", "value": "99"}, {"name": "etag", "value": "\"e\""}],
         "content": {"size": 4, "mimeType": "text/plain", "text": "Zg==\n"})"));
  EXPECT_EQ(exchange.site, "https://h.example:1");
  EXPECT_EQ(exchange.request.target, "/p?q=1");
  EXPECT_EQ(exchange.response.delay, std::chrono::milliseconds(12));
  EXPECT_EQ(exchange.response.body, "Zg==\n");
  EXPECT_THAT(exchange.response.fields,
              ElementsAre(Pair("content-length", "5"), Pair("etag", "\"e\"")));
}

TEST(HarTest, DecodesBase64AndAddsTheLength) {
  const Exchange exchange =
      ReadOne(ArchiveWith(R"("headers": [], "content": {"text": "AAH/", "encoding": "base64"})"));
  EXPECT_EQ(exchange.response.body, std::string("\0\x01\xFF", 3));
  EXPECT_THAT(exchange.response.fields, ElementsAre(Pair("Content-Length", "3")));
}

TEST(HarTest, ResponseWithoutBodyKeepsItsLength) {
  const Exchange exchange = ReadOne(ArchiveWith(
      R"("headers": [{"name": "Content-Length", "value": "7"}], "content": {"text": "x"})",
      "HEAD"));
  EXPECT_EQ(exchange.response.body, "");
  EXPECT_THAT(exchange.response.fields, ElementsAre(Pair("Content-Length", "7")));
}

TEST(HarTest, LeavesOutEntriesWithoutResponse) {
  EXPECT_THAT(ParseHar(R"({"log": {"entries": [{"request": {"method": "GET", "url": "http://h",
                           "headers": []}, "response": {"status": 0, "headers": [],
                           "content": {}}}]}})"),
              ElementsAre());
}

TEST(HarTest, RefusesWhatIsNoArchive) {
  for (const char* text : {"", "{}", "[]", "{\"log\": {}}", "{\"log\": {\"entries\": [{}]}}",
                           "{\"log\": {\"entries\": [1]}}", "\xFF"}) {
    EXPECT_THROW(ParseHar(text), std::runtime_error) << text;
  }
  EXPECT_THROW(
      ParseHar(ArchiveWith(R"("headers": [], "content": {"text": "!", "encoding": "base64"})")),
      std::runtime_error);
}

}  // namespace
}  // namespace stowra_emulator

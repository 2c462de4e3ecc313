#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "emulator/emulator.h"
#include "tests/emulator/raw_client.h"

namespace stowra_emulator {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

const std::string kBody = R"({"extensions":[{"id":"roof-tools"}]})";

std::string PostHead(const std::string& headers) {
  return "POST /extensions HTTP/1.1\r\nHost: localhost\r\n" + headers + "\r\n";
}

std::string LengthHeader(const std::string& size) { return "Content-Length: " + size + "\r\n"; }

TEST(BodySizeTest, RefusesOversizedBodyBeforeItIsSent) {
  const Emulator emulator;
  for (const char* expect : {"", "Expect: 100-continue\r\n"}) {
    for (const char* size : {"536870913", "1100000000", "18446744073709551615"}) {
      RawClient client(emulator.port());
      client.Send(PostHead(LengthHeader(size) + expect));
      const RawResponse response = SplitResponse(client.ReadToEnd());
      EXPECT_THAT(response.head, StartsWith("HTTP/1.1 413 ")) << size;
      EXPECT_EQ(response.Header("Content-Type"), "application/json");
      EXPECT_EQ(response.Header("Connection"), "close");
      EXPECT_THAT(response.body, HasSubstr("\"error\": \"a body of more than 536870912 bytes"));
      EXPECT_FALSE(client.was_reset());
    }
  }
}

TEST(BodySizeTest, WaitsForBodyOfMaximumSize) {
  const Emulator emulator;
  RawClient client(emulator.port());
  client.Send(PostHead(LengthHeader("536870912") + "Expect: 100-continue\r\n"));
  EXPECT_EQ(client.ReadUntil("\r\n\r\n"), "HTTP/1.1 100 Continue\r\n\r\n");
}

TEST(BodySizeTest, AcceptsBodyOfMaximumSize) {
  EmulatorOptions options;
  options.max_body_size = kBody.size();
  const Emulator emulator(options);
  RawClient client(emulator.port());
  for (int i = 0; i < 2; ++i) {
    client.Send(PostHead(LengthHeader(std::to_string(kBody.size()))) + kBody);
    EXPECT_THAT(ReadResponse(client).head, StartsWith("HTTP/1.1 200 "));
  }
  client.Send(PostHead(LengthHeader(std::to_string(kBody.size() + 1))) + kBody + " ");
  EXPECT_THAT(SplitResponse(client.ReadToEnd()).head, StartsWith("HTTP/1.1 413 "));
}

TEST(BodySizeTest, RefusesChunkedBodyThatGrowsTooLarge) {
  std::ostringstream log;
  EmulatorOptions options;
  options.max_body_size = 10000;
  options.log = &log;
  {
    const Emulator emulator(options);
    RawClient client(emulator.port());
    client.Send(PostHead("Transfer-Encoding: chunked\r\n"));
    for (int i = 0; i < 11; ++i) client.Send("3e8\r\n" + std::string(1000, ' ') + "\r\n");
    const RawResponse response = SplitResponse(client.ReadToEnd());
    EXPECT_THAT(response.head, StartsWith("HTTP/1.1 413 "));
    EXPECT_THAT(response.body, HasSubstr("more than 10000 bytes"));
    EXPECT_FALSE(client.was_reset());
  }
  EXPECT_THAT(log.str(), MatchesRegex("POST /extensions 413 [0-9]+\n"));
}

}  // namespace
}  // namespace stowra_emulator

// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "emulator/emulator.h"
#include "tests/emulator/raw_client.h"

namespace stowra_emulator {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr std::size_t kLineLimit = 8 << 10;
constexpr std::size_t kHeadLimit = 64 << 10;

std::string Field(std::size_t size) { return "X: " + std::string(size - 5, 'x') + "\r\n"; }

// Everything the emulator sends after a request with these header fields.
RawResponse AnswerTo(const Emulator& emulator, const std::string& fields) {
  RawClient client(emulator.port());
  client.Send("GET /user-info HTTP/1.1\r\nConnection: close\r\n" + fields + "\r\n");
  RawResponse response = SplitResponse(client.ReadToEnd());
  EXPECT_FALSE(client.was_reset());
  return response;
}

TEST(RequestHeadTest, AcceptsLongestHeaderLine) {
  const Emulator emulator;
  EXPECT_THAT(AnswerTo(emulator, Field(kLineLimit)).head, StartsWith("HTTP/1.1 200 "));
}

TEST(RequestHeadTest, RefusesLongerHeaderLine) {
  std::ostringstream log;
  EmulatorOptions options;
  options.log = &log;
  {
    const Emulator emulator(options);
    const RawResponse response = AnswerTo(emulator, Field(kLineLimit + 1));
    EXPECT_THAT(response.head, StartsWith("HTTP/1.1 431 Request Header Fields Too Large\r\n"));
    EXPECT_EQ(response.Header("Connection"), "close");
    EXPECT_THAT(response.body, HasSubstr("\"error\": \"a header field of more than 8192 bytes"));
  }
  EXPECT_THAT(log.str(), StartsWith("GET /user-info 431 "));
}

TEST(RequestHeadTest, RefusesTooManyHeaderFields) {
  const Emulator emulator;
  const std::size_t rest =
      std::string("GET /user-info HTTP/1.1\r\nConnection: close\r\n\r\n").size();
  std::string fields;
  for (int i = 0; i < 63; ++i) fields += Field(1024);
  const std::string last = Field(kHeadLimit - rest - fields.size());
  EXPECT_THAT(AnswerTo(emulator, fields + last).head, StartsWith("HTTP/1.1 200 "));
  EXPECT_THAT(AnswerTo(emulator, fields + "x" + last).head, StartsWith("HTTP/1.1 431 "));
}

TEST(RequestHeadTest, RefusesEndlessLinesBeforeTheyEnd) {
  const Emulator emulator;
  RawClient header(emulator.port());
  header.Send("GET /update HTTP/1.1\r\nX: " + std::string(kHeadLimit, 'x'));
  EXPECT_EQ(header.Read(13), "HTTP/1.1 431 ");
  RawClient line(emulator.port());
  line.Send("GET /" + std::string(kHeadLimit, 'x'));
  EXPECT_EQ(line.Read(13), "HTTP/1.1 414 ");
}

TEST(RequestHeadTest, ReadsHeadThatComesByteByByte) {
  const Emulator emulator;
  RawClient client(emulator.port());
  for (const char byte : GetRequest("/user-info?user=u-1002")) client.Send({&byte, 1});
  EXPECT_THAT(ReadResponse(client).body, HasSubstr("u-1002"));
}

}  // namespace
}  // namespace stowra_emulator

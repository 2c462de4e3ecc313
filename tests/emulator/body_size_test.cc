// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <sstream>
#include <string>

#include "emulator/emulator.h"
#include "emulator/gzip_bomb.h"
#include "tests/emulator/raw_client.h"
#include "tests/platform/http/gzip_text.h"

namespace stowra_emulator {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

using Form = httplib::MultipartFormDataItems;

const std::string kBody = R"({"extensions":[{"id":"roof-tools"}]})";

std::string PostHead(const std::string& headers) {
  return "POST /extensions HTTP/1.1\r\nHost: localhost\r\n" + headers + "\r\n";
}

std::string LengthHeader(const std::string& size) { return "Content-Length: " + size + "\r\n"; }

TEST(BodySizeTest, RefusesOversizedBodyBeforeItIsSent) {
  const Emulator emulator;
  for (const char* expect : {"", "Expect: 100-continue\r\n"}) {
    for (const char* size : {"67108865", "1100000000", "18446744073709551615"}) {
      RawClient client(emulator.port());
      client.Send(PostHead(LengthHeader(size) + expect));
      const RawResponse response = SplitResponse(client.ReadToEnd());
      EXPECT_THAT(response.head, StartsWith("HTTP/1.1 413 ")) << size;
      EXPECT_EQ(response.Header("Content-Type"), "application/json");
      EXPECT_EQ(response.Header("Connection"), "close");
      EXPECT_THAT(response.body, HasSubstr("\"error\": \"a body of more than 67108864 bytes"));
      EXPECT_FALSE(client.was_reset());
    }
  }
}

TEST(BodySizeTest, WaitsForBodyOfMaximumSize) {
  const Emulator emulator;
  RawClient client(emulator.port());
  client.Send(PostHead(LengthHeader("67108864") + "Expect: 100-continue\r\n"));
  EXPECT_EQ(client.ReadUntil("\r\n\r\n"), "HTTP/1.1 100 Continue\r\n\r\n");
}

TEST(BodySizeTest, OnlyFormsWithFilesMayBeLarger) {
  const Emulator emulator;
  const auto status_of = [&emulator](const std::string& size) {
    RawClient client(emulator.port());
    client.Send("POST /upload HTTP/1.1\r\nHost: localhost\r\nExpect: 100-continue\r\n" +
                LengthHeader(size) + "\r\n");
    return client.ReadUntil("\r\n").substr(9, 3);
  };
  EXPECT_EQ(status_of("8589934592"), "100");
  EXPECT_EQ(status_of("8589934593"), "413");
}

TEST(BodySizeTest, RefusesBodyThatInflatesTooLarge) {
  EmulatorOptions options;
  options.limits.body = 2 << 20;
  const Emulator emulator(options);
  RawClient client(emulator.port());
  client.Send(
      PostHead(LengthHeader(std::to_string(GzipBomb().size())) + "Content-Encoding: gzip\r\n") +
      GzipBomb());
  EXPECT_THAT(SplitResponse(client.ReadToEnd()).head, StartsWith("HTTP/1.1 413 "));
}

TEST(BodySizeTest, InflatedBodyMayHaveTheMaximumSize) {
  const std::string longest = kBody + std::string(10000, ' ');
  EmulatorOptions options;
  options.limits.body = longest.size();
  const Emulator emulator(options);
  RawClient client(emulator.port());
  const auto answer_to = [&client](const std::string& body) {
    const std::string gzip = stowra_test::Gzip(body);
    client.Send(PostHead(LengthHeader(std::to_string(gzip.size())) + "Content-Encoding: gzip\r\n") +
                gzip);
    return ReadResponse(client).head;
  };
  EXPECT_THAT(answer_to(longest), StartsWith("HTTP/1.1 200 "));
  EXPECT_THAT(answer_to(longest + " "), StartsWith("HTTP/1.1 413 "));
}

TEST(BodySizeTest, FormsMayHaveTheMaximumOfText) {
  const Emulator emulator;
  httplib::Client client(emulator.url());
  const httplib::MultipartFormData longest = {"subjectId", std::string(Limits().form_texts, 'x'),
                                              "", ""};
  const httplib::MultipartFormData one_byte = {"subjectClass", "x", "", ""};
  EXPECT_EQ(client.Post("/upload", Form{longest})->status, 400) << "parts are missing";
  EXPECT_EQ(client.Post("/upload", Form{longest, one_byte})->status, 413);
}

TEST(BodySizeTest, RefusesFormsWithTooMuchTextOrTooManyParts) {
  EmulatorOptions options;
  options.limits.form_texts = 1000;
  const Emulator emulator(options);
  httplib::Client client(emulator.url());
  const httplib::MultipartFormData text = {"subjectId", std::string(600, 'x'), "", ""};
  EXPECT_EQ(client.Post("/upload", Form{text})->status, 400) << "parts are missing";
  EXPECT_EQ(client.Post("/upload", Form{text, text})->status, 413);
  const httplib::MultipartFormData small = {"subjectId", "x", "", ""};
  EXPECT_EQ(client.Post("/upload", Form(100, small))->status, 400);
  EXPECT_EQ(client.Post("/upload", Form(101, small))->status, 413);
}

TEST(BodySizeTest, MalformedBodyEndsTheConnection) {
  const Emulator emulator;
  RawClient client(emulator.port());
  client.Send(PostHead("Transfer-Encoding: chunked\r\n") + "nonsense\r\n");
  const RawResponse response = SplitResponse(client.ReadToEnd());
  EXPECT_THAT(response.head, StartsWith("HTTP/1.1 400 "));
  EXPECT_THAT(response.body, HasSubstr("malformed"));
}

TEST(BodySizeTest, AcceptsBodyOfMaximumSize) {
  EmulatorOptions options;
  options.limits.body = kBody.size();
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
  options.limits.body = 10000;
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

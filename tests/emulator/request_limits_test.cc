// SPDX-License-Identifier: MIT
// How much a request may hold, which docs/emulator.md states, too.

#include <cstdint>

#include "emulator/gzip_bomb.h"
#include "emulator/limits.h"
#include "tests/emulator/http_client.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/support/corpora.h"
#include "tests/support/text.h"

namespace stowra_emulator {
namespace {

constexpr std::size_t kLineLimit = 8 << 10;
constexpr std::size_t kHeadLimit = 64 << 10;

std::string Field(std::size_t size) { return "X: " + std::string(size - 5, 'x') + "\r\n"; }

// A request with these header fields.
std::string With(const std::string& fields) {
  return "GET /user-info HTTP/1.1\r\nConnection: close\r\n" + fields + "\r\n";
}

using RequestHeadTest = RawTest;

TEST_F(RequestHeadTest, RefusesTooLongHeaderLine) {
  EXPECT_EQ(AnswerTo(With(Field(kLineLimit))).status(), 200);
  const RawResponse response = AnswerTo(With(Field(kLineLimit + 1)));
  EXPECT_THAT(response.head, StartsWith("HTTP/1.1 431 Request Header Fields Too Large\r\n"));
  EXPECT_EQ(response.Header("Connection"), "close");
  EXPECT_THAT(response.body, HasSubstr("\"error\": \"a header field of more than 8192 bytes"));
  EXPECT_THAT(EndAndReadLog(), HasSubstr("\nGET /user-info 431 "));
}

TEST_F(RequestHeadTest, RefusesTooManyHeaderFields) {
  const std::string fields = stowra_test::Repeated(Field(1024), 63);
  const std::string last = Field(kHeadLimit - With(fields).size());
  EXPECT_EQ(AnswerTo(With(fields + last)).status(), 200);
  EXPECT_EQ(AnswerTo(With(fields + "x" + last)).status(), 431);
}

TEST_F(RequestHeadTest, RefusesEndlessLinesBeforeTheyEnd) {
  RawClient header(port());
  header.Send("GET /update HTTP/1.1\r\nX: " + std::string(kHeadLimit, 'x'));
  EXPECT_EQ(header.Read(13), "HTTP/1.1 431 ");
  RawClient line(port());
  line.Send("GET /" + std::string(kHeadLimit, 'x'));
  EXPECT_EQ(line.Read(13), "HTTP/1.1 414 ");
}

TEST_F(RequestHeadTest, ReadsHeadThatComesByteByByte) {
  RawClient client(port());
  for (const char byte : GetRequest("/user-info?user=u-1002")) client.Send({&byte, 1});
  EXPECT_THAT(ReadResponse(client).body, HasSubstr("u-1002"));
}

using Form = httplib::MultipartFormDataItems;

std::string PostHead(const std::string& headers) {
  return "POST /extensions HTTP/1.1\r\nHost: localhost\r\n" + headers + "\r\n";
}

std::string LengthHeader(const std::string& size) { return "Content-Length: " + size + "\r\n"; }

std::string PostGzip(const std::string& gzip) {
  return PostHead(LengthHeader(std::to_string(gzip.size())) + "Content-Encoding: gzip\r\n") + gzip;
}

class BodySizeTest : public RawTest {
 protected:
  int StatusOf(const Form& form) {
    httplib::Client client = PatientClient("http://127.0.0.1:" + std::to_string(port()));
    const httplib::Result result = client.Post("/upload", form);
    return result ? result->status : -1;
  }
};

TEST_F(BodySizeTest, RefusesOversizedBodyBeforeItIsSent) {
  for (const char* expect : {"", "Expect: 100-continue\r\n"}) {
    for (const char* size : {"67108865", "1100000000", "18446744073709551615"}) {
      const RawResponse response = AnswerTo(PostHead(LengthHeader(size) + expect));
      EXPECT_EQ(response.status(), 413) << size;
      EXPECT_EQ(response.Header("Content-Type"), "application/json");
      EXPECT_EQ(response.Header("Connection"), "close");
      EXPECT_THAT(response.body, HasSubstr("\"error\": \"a body of more than 67108864 bytes"));
    }
  }
}

TEST_F(BodySizeTest, OnlyFormsWithFilesMayBeLarger) {
  const auto status_of = [this](const std::string& path, const std::string& size) {
    RawClient client(port());
    client.Send("POST " + path + " HTTP/1.1\r\nExpect: 100-continue\r\n" + LengthHeader(size) +
                "\r\n");
    return client.ReadUntil("\r\n").substr(9, 3);
  };
  EXPECT_EQ(status_of("/extensions", "67108864"), "100");
  EXPECT_EQ(status_of("/upload", "8589934592"), "100");
  EXPECT_EQ(status_of("/upload", "8589934593"), "413");
}

TEST_F(BodySizeTest, RefusesBodyThatInflatesTooLarge) {
  options_.limits.body = 2 << 20;
  EXPECT_EQ(AnswerTo(PostGzip(GzipBomb())).status(), 413);
}

TEST_F(BodySizeTest, InflatedBodyMayHaveTheMaximumSize) {
  const std::string longest = kExtensions + std::string(10000, ' ');
  options_.limits.body = longest.size();
  RawClient client(port());
  EXPECT_EQ(client.Ask(PostGzip(stowra_test::Gzip(longest))).status(), 200);
  EXPECT_EQ(client.Ask(PostGzip(stowra_test::Gzip(longest + " "))).status(), 413);
}

TEST_F(BodySizeTest, FormsMayHaveTheMaximumOfText) {
  const httplib::MultipartFormData longest = {"subjectId", std::string(Limits().form_texts, 'x'),
                                              "", ""};
  const httplib::MultipartFormData one_byte = {"subjectClass", "x", "", ""};
  EXPECT_EQ(StatusOf(Form{longest}), 400) << "parts are missing";
  EXPECT_EQ(StatusOf(Form{longest, one_byte}), 413);
}

TEST_F(BodySizeTest, RefusesFormsWithTooMuchTextOrTooManyParts) {
  options_.limits.form_texts = 1000;
  const httplib::MultipartFormData text = {"subjectId", std::string(600, 'x'), "", ""};
  EXPECT_EQ(StatusOf(Form{text}), 400) << "parts are missing";
  EXPECT_EQ(StatusOf(Form{text, text}), 413);
  const httplib::MultipartFormData small = {"subjectId", "x", "", ""};
  EXPECT_EQ(StatusOf(Form(100, small)), 400);
  EXPECT_EQ(StatusOf(Form(101, small)), 413);
}

TEST_F(BodySizeTest, MalformedBodyEndsTheConnection) {
  const RawResponse response =
      AnswerTo(PostHead("Transfer-Encoding: chunked\r\n") + "nonsense\r\n");
  EXPECT_EQ(response.status(), 400);
  EXPECT_THAT(response.body, HasSubstr("malformed"));
}

TEST_F(BodySizeTest, AcceptsBodyOfMaximumSize) {
  const std::string body = kExtensions;
  options_.limits.body = body.size();
  RawClient client(port());
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(client.Ask(PostHead(LengthHeader(std::to_string(body.size()))) + body).status(), 200);
  }
  client.Send(PostHead(LengthHeader(std::to_string(body.size() + 1))) + body + " ");
  EXPECT_EQ(SplitResponse(client.ReadToEnd()).status(), 413);
}

TEST_F(BodySizeTest, RefusesChunkedBodyThatGrowsTooLarge) {
  options_.limits.body = 10000;
  const RawResponse response =
      AnswerTo(PostHead("Transfer-Encoding: chunked\r\n") +
               stowra_test::Repeated("3e8\r\n" + std::string(1000, ' ') + "\r\n", 11));
  EXPECT_EQ(response.status(), 413);
  EXPECT_THAT(response.body, HasSubstr("more than 10000 bytes"));
  EXPECT_THAT(EndAndReadLog(), MatchesRegex("POST /extensions 413 [0-9]+\n"));
}

TEST(LimitsPageTest, StatesTheLimitsOfRequests) {
  constexpr std::uint64_t kKib = 1024;
  constexpr std::uint64_t kMib = 1024 * kKib;
  struct Row {
    std::string what;
    std::uint64_t size;
    std::uint64_t unit;
    std::string unit_name;
  };
  const Limits limits;
  const Row rows[] = {
      {"request line", limits.head_line, kKib, "KiB"},
      {"a header field", limits.head_line, kKib, "KiB"},
      {"all header fields", limits.head, kKib, "KiB"},
      {"body, as sent and once inflated", limits.body, kMib, "MiB"},
      {"body of `POST /upload`", limits.upload, 1024 * kMib, "GiB"},
      {"parts of a form that are no files, together", limits.form_texts, kMib, "MiB"},
  };
  const std::string page = stowra_test::ReadFile(STOWRA_EMULATOR_PAGE);
  for (const auto& [what, size, unit, name] : rows) {
    EXPECT_EQ(size % unit, 0u) << what;
    EXPECT_THAT(page,
                HasSubstr("\n| " + what + " | " + std::to_string(size / unit) + " " + name + " |"));
  }
}

}  // namespace
}  // namespace stowra_emulator

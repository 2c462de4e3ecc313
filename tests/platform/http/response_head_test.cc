// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/response_head.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "common_stowraapi/platform/ustring.h"

namespace stowra_test {
namespace {

using ovrant::internet::ResponseHead;

class ResponseHeadTest : public ::testing::Test {
 protected:
  // Adds lines given without their ends. Gives the first refusal, or "".
  std::string Add(std::initializer_list<const char*> lines) {
    for (const char* line : lines) {
      const auto failure = head_.AddLine(std::string(line) + "\r\n");
      if (failure) return failure.text;
    }
    return "";
  }

  std::string Header(const char* name) {
    const auto headers = head_.fields().ToMap();
    const auto found = headers.find(name);
    return found == headers.end() ? "(none)" : found->second.utf8();
  }

  ResponseHead head_;
};

TEST_F(ResponseHeadTest, IsEmptyAtFirst) {
  EXPECT_EQ(head_.status(), 0);
  EXPECT_FALSE(head_.complete());
  EXPECT_FALSE(head_.is_gzip());
  EXPECT_EQ(head_.content_length(), std::nullopt);
  EXPECT_TRUE(head_.fields().empty());
}

TEST_F(ResponseHeadTest, IsCompleteAfterTheEmptyLine) {
  EXPECT_EQ(Add({"HTTP/1.1 404 Not Found", "X-One: 1"}), "");
  EXPECT_EQ(head_.status(), 404);
  EXPECT_FALSE(head_.complete());
  EXPECT_EQ(Add({""}), "");
  EXPECT_TRUE(head_.complete());
  EXPECT_EQ(Header("X-One"), "1");
}

// libcurl reads on after such a line. A head that ended there would miss the framing.
TEST_F(ResponseHeadTest, ALineOfBlanksDoesNotEndTheHead) {
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", "X-One: 1", " \t", "Transfer-Encoding: chunked"}), "");
  EXPECT_FALSE(head_.complete());
  EXPECT_EQ(Add({""}), "");
  EXPECT_TRUE(head_.complete());
  EXPECT_TRUE(head_.is_chunked());
}

TEST_F(ResponseHeadTest, ReadsTheStatusOfEveryVersion) {
  for (const char* line : {"HTTP/1.0 200 OK", "HTTP/1.1 200", "HTTP/2 200", "http/1.1 200 ok"}) {
    head_ = ResponseHead();
    EXPECT_EQ(Add({line, ""}), "");
    EXPECT_EQ(head_.status(), 200) << line;
    EXPECT_TRUE(head_.complete());
  }
}

TEST_F(ResponseHeadTest, RefusesAStatusLineWithoutAVersionOrAStatus) {
  for (const char* line : {"HTTP/1.1 2000 OK", "HTTP/1.1 20", "HTTP/1.1 099", "HTTP/1.1 +200",
                           "HTTP/1.1 two", "HTTP/1.1", "HTTP/1.1 ", "HTTP//1.1 200", "HTTP/ 200",
                           "HTTP/1.1 \r200 OK", "HTTP/1.1\t200 OK"}) {
    head_ = ResponseHead();
    EXPECT_EQ(Add({line}), "the response's status line is malformed") << line;
    EXPECT_EQ(head_.status(), 0) << line;
  }
}

TEST_F(ResponseHeadTest, InterimResponseIsNotComplete) {
  EXPECT_EQ(Add({"HTTP/1.1 100 Continue", "X-Interim: 1", ""}), "");
  EXPECT_FALSE(head_.complete());
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", ""}), "");
  EXPECT_TRUE(head_.complete());
  EXPECT_EQ(head_.status(), 200);
  EXPECT_TRUE(head_.fields().empty());
}

TEST_F(ResponseHeadTest, ForgetsTheHeadersOfAnInterimResponse) {
  EXPECT_EQ(Add({"HTTP/1.1 103 Early Hints", "Content-Encoding: gzip", "Content-Length: 5",
                 "Location: /old", "X-Old: 1", "", "HTTP/1.1 301 OK", "Content-Length: 7"}),
            "");
  EXPECT_FALSE(head_.complete());
  EXPECT_FALSE(head_.is_gzip());
  EXPECT_FALSE(head_.IsRedirect());
  EXPECT_EQ(head_.content_length(), 7U);
  EXPECT_EQ(Header("X-Old"), "(none)");
}

TEST_F(ResponseHeadTest, RefusesLinesOutOfPlace) {
  EXPECT_NE(Add({"X-One: 1"}), "");
  head_ = ResponseHead();
  EXPECT_NE(Add({"HTTP/1.1 200 OK", "X-One: 1", "HTTP/1.1 404 Not Found"}), "");
  EXPECT_EQ(head_.status(), 200);
  head_ = ResponseHead();
  EXPECT_NE(Add({"HTTP/1.1 200 OK", "", "HTTP/1.1 404 Not Found"}), "");
  EXPECT_EQ(head_.status(), 200);
}

TEST_F(ResponseHeadTest, RefusesAnotherProtocol) {
  EXPECT_EQ(Add({"HTTP/1.1 101 Switching Protocols"}), "the response switches the protocol");
}

TEST_F(ResponseHeadTest, TrailersChangeNothing) {
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", "X-A: 1", ""}), "");
  for (const char* line : {"HTTP/1.1 404 Not Found\r\n", "X-A: 2\r\n", "Content-Length: 9\r\n",
                           "Content-Encoding: br\r\n", "\r\n"}) {
    EXPECT_FALSE(head_.AddTrailer(line)) << line;
  }
  EXPECT_TRUE(head_.complete());
  EXPECT_EQ(head_.status(), 200);
  EXPECT_EQ(head_.content_length(), std::nullopt);
  EXPECT_FALSE(head_.is_gzip());
  EXPECT_EQ(Header("X-A"), "1");
}

TEST_F(ResponseHeadTest, SomeStatusesWithALocationAreRedirects) {
  for (const int status : {200, 201, 300, 301, 302, 303, 304, 305, 307, 308, 399, 400}) {
    const std::string line = "HTTP/1.1 " + std::to_string(status) + " Text";
    const bool is_redirect =
        status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
    head_ = ResponseHead();
    EXPECT_EQ(Add({line.c_str(), "location:", "LOCATION: /a ", "Location: /b", ""}), "");
    EXPECT_EQ(head_.IsRedirect(), is_redirect) << status;
    EXPECT_EQ(head_.location(), "/a");
    head_ = ResponseHead();
    EXPECT_EQ(Add({line.c_str(), "Location: ", ""}), "");
    EXPECT_FALSE(head_.IsRedirect()) << status;
  }
}

TEST_F(ResponseHeadTest, RefusesEndlessTrailers) {
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", ""}), "");
  const std::string half(ResponseHead::kMaxBytes / 2, 'x');
  EXPECT_FALSE(head_.AddTrailer(half));
  EXPECT_TRUE(head_.AddTrailer(half));
}

TEST_F(ResponseHeadTest, JoinsRepeatedHeadersOfTheSameName) {
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", "X-A: 1", "X-B: 2", "X-A: 3", "x-a: 4"}), "");
  EXPECT_EQ(Header("X-A"), "1, 3");
  EXPECT_EQ(Header("x-a"), "4");
  EXPECT_EQ(Header("X-B"), "2");
}

TEST_F(ResponseHeadTest, TrimsNamesAndValues) {
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", "X-A \t:\t  a b \t", "X-Empty:", "X-Colon: a:b"}), "");
  EXPECT_EQ(Header("X-A"), "a b");
  EXPECT_EQ(Header("X-Empty"), "");
  EXPECT_EQ(Header("X-Colon"), "a:b");
}

TEST_F(ResponseHeadTest, UnfoldsLines) {
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", "X-A: one", " two", "\tthree", "X-B: 1"}), "");
  EXPECT_EQ(Header("X-A"), "one two three");
  EXPECT_EQ(Header("X-B"), "1");
  EXPECT_EQ(head_.fields().ToMap().size(), 2U);
}

TEST_F(ResponseHeadTest, RefusesLinesWithoutAName) {
  for (const char* line : {"garbage", ": value", " continues nothing", "\tcontinues nothing"}) {
    head_ = ResponseHead();
    EXPECT_EQ(Add({"HTTP/1.1 200 OK", line}), "the response has a malformed header line") << line;
  }
}

TEST_F(ResponseHeadTest, RefusesNulInAHeaderLine) {
  EXPECT_EQ(Add({"HTTP/1.1 200 OK"}), "");
  EXPECT_TRUE(head_.AddLine(std::string_view("X-A: 1\0\r\n", 9)));
}

TEST_F(ResponseHeadTest, RecognizesGzip) {
  for (const char* line : {"Content-Encoding: gzip", "content-encoding:X-GZIP"}) {
    head_ = ResponseHead();
    EXPECT_EQ(Add({"HTTP/1.1 200 OK", line, ""}), "");
    EXPECT_TRUE(head_.is_gzip()) << line;
  }
  for (const char* line : {"Content-Encoding: identity", "Content-Encoding:"}) {
    head_ = ResponseHead();
    EXPECT_EQ(Add({"HTTP/1.1 200 OK", line, ""}), "");
    EXPECT_FALSE(head_.is_gzip()) << line;
  }
}

TEST_F(ResponseHeadTest, RefusesOtherEncodings) {
  for (const char* line : {"Content-Encoding: br", "Content-Encoding: gzip, gzip",
                           "Content-Encoding: none", "Transfer-Encoding: gzip",
                           "Transfer-Encoding: gzip, chunked", "Transfer-Encoding: identityx"}) {
    head_ = ResponseHead();
    EXPECT_NE(Add({"HTTP/1.1 200 OK", line}), "") << line;
  }
  head_ = ResponseHead();
  EXPECT_NE(Add({"HTTP/1.1 200 OK", "Content-Encoding: gzip", "Content-Encoding: x-gzip"}), "");
  head_ = ResponseHead();
  EXPECT_NE(Add({"HTTP/1.1 200 OK", "Transfer-Encoding: chunked", "Transfer-Encoding: gzip"}), "");
  for (const char* line : {"Transfer-Encoding: chunked", "TRANSFER-ENCODING: Chunked"}) {
    head_ = ResponseHead();
    EXPECT_EQ(Add({"HTTP/1.1 200 OK", line}), "") << line;
  }
}

TEST_F(ResponseHeadTest, RefusesTwoLengths) {
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", "Content-Length: 5", "content-length: 5"}), "");
  EXPECT_EQ(head_.content_length(), 5U);
  EXPECT_NE(Add({"Content-Length: 6"}), "");
}

TEST_F(ResponseHeadTest, ChunksOverrideTheLength) {
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", "Content-Length: 5", "Transfer-Encoding: chunked"}), "");
  EXPECT_EQ(head_.content_length(), std::nullopt);
}

TEST_F(ResponseHeadTest, RefusesALengthBesideIdentityTransferEncoding) {
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", "Transfer-Encoding: identity"}), "");
  EXPECT_NE(Add({"Content-Length: 5"}), "");
}

TEST_F(ResponseHeadTest, RefusesABlankBeforeTheColonOfAFramingField) {
  for (const char* line :
       {"Content-Length : 5", "Transfer-Encoding\t: chunked", "Content-Encoding : gzip"}) {
    head_ = ResponseHead();
    EXPECT_NE(Add({"HTTP/1.1 200 OK", line}), "") << line;
  }
  head_ = ResponseHead();
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", "X-Other : 5"}), "");
}

TEST_F(ResponseHeadTest, RefusesAContinuationOfAFramingField) {
  for (const char* line : {"Content-Length:", "Transfer-Encoding:", "Content-Encoding:"}) {
    head_ = ResponseHead();
    Add({"HTTP/1.1 200 OK", line});
    EXPECT_NE(Add({" gzip"}), "") << line;
  }
  head_ = ResponseHead();
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", "Content-Length: 5", "X-Other: 1", " 2"}), "");
}

TEST_F(ResponseHeadTest, RefusesALengthThatIsNotANumber) {
  for (const char* line : {"Content-Length: x", "Content-Length: 5x", "Content-Length: -5",
                           "Content-Length:", "Content-Length: 99999999999999999999999999",
                           "Content-Length: 5,", "Content-Length: 5, x"}) {
    head_ = ResponseHead();
    EXPECT_EQ(Add({"HTTP/1.1 200 OK", line}), "the response's Content-Length is not a number")
        << line;
  }
}

TEST_F(ResponseHeadTest, LengthMayBeRepeatedInAList) {
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", "Content-Length: 6, 6,06"}), "");
  EXPECT_EQ(head_.content_length(), 6U);
  EXPECT_EQ(Add({"Content-Length: 6, 7"}), "the response has two different lengths");
}

TEST_F(ResponseHeadTest, SomeStatusesHaveNoBody) {
  for (const int status : {200, 204, 205, 304, 404}) {
    head_ = ResponseHead();
    EXPECT_EQ(Add({("HTTP/1.1 " + std::to_string(status) + " Text").c_str(), ""}), "");
    EXPECT_EQ(head_.HasNoBody(), status == 204 || status == 304) << status;
  }
}

TEST_F(ResponseHeadTest, LimitOfAllLinesIsExact) {
  const std::string status = "HTTP/1.1 200 OK\r\n";
  const std::string field = "X-Long: ";
  const std::string value(ResponseHead::kMaxBytes - status.size() - field.size() - 2, 'x');
  EXPECT_FALSE(head_.AddLine(status));
  EXPECT_FALSE(head_.AddLine(field + value + "\r\n"));
  EXPECT_TRUE(head_.AddLine("\r\n"));
}

TEST_F(ResponseHeadTest, RefusesEndlessHeaders) {
  EXPECT_EQ(Add({"HTTP/1.1 200 OK"}), "");
  const std::string line = "X-Long: " + std::string(1000, 'x');
  std::string why;
  std::size_t lines = 0;
  while (why.empty() && lines * line.size() < 2 * ResponseHead::kMaxBytes) {
    why = Add({line.c_str()});
    ++lines;
  }
  EXPECT_NE(why, "");
  EXPECT_GT((lines + 1) * (line.size() + 2), ResponseHead::kMaxBytes - 2 * line.size());
}

TEST_F(ResponseHeadTest, InterimResponsesShareTheLimit) {
  const std::string line = "X-Long: " + std::string(ResponseHead::kMaxBytes / 2, 'x');
  EXPECT_EQ(Add({"HTTP/1.1 100 Continue", line.c_str(), ""}), "");
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", line.c_str()}), "the response's headers are too long");
}

TEST_F(ResponseHeadTest, MovesWithItsFoldedHeader) {
  EXPECT_EQ(Add({"HTTP/1.1 200 OK", "X-A: one"}), "");
  ResponseHead moved(std::move(head_));
  EXPECT_FALSE(moved.AddLine(" two\r\n"));
  EXPECT_EQ(moved.fields().ToMap().at("X-A"), ovrant::utils::ovrant_ustring("one two"));
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/response_head.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/text.h"

namespace stowra_test {
namespace {

using ovrant::internet::ResponseHead;

constexpr char kOk[] = "HTTP/1.1 200 OK";
constexpr char kNoField[] = "the response has a malformed header line";
constexpr char kOutOfPlace[] = "the response has a header out of place";
constexpr char kTooLong[] = "the response's headers are too long";

class ResponseHeadTest : public ::testing::Test {
 protected:
  // Adds lines given without their ends. Gives the first refusal, or "".
  std::string Add(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
      if (const auto failure = head_.AddLine(line + "\r\n")) return failure.text;
    }
    return "";
  }

  // Adds them to a new head.
  std::string Read(const std::vector<std::string>& lines) {
    head_ = ResponseHead();
    return Add(lines);
  }

  // Expects the refusal of each list's last line, not before. "|" separates lines.
  void ExpectRefused(std::initializer_list<const char*> lists, const char* why) {
    for (const char* list : lists) {
      std::vector<std::string> lines = Split(list);
      const std::string last = std::exchange(lines.back(), kOk);
      std::rotate(lines.begin(), lines.end() - 1, lines.end());
      EXPECT_EQ(Read(lines), "") << list;
      EXPECT_EQ(Add({last}), why) << list;
      EXPECT_EQ(head_.status(), 200) << list;
    }
  }

  std::string Header(const char* name) {
    const auto headers = head_.fields().ToMap();
    const auto found = headers.find(name);
    return found == headers.end() ? "(none)" : found->second.utf8();
  }

  ResponseHead head_;
};

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
  EXPECT_EQ(Add({kOk, "X-One: 1", " \t", "Transfer-Encoding: chunked"}), "");
  EXPECT_FALSE(head_.complete());
  EXPECT_EQ(Add({""}), "");
  EXPECT_TRUE(head_.complete());
  EXPECT_TRUE(head_.is_chunked());
}

TEST_F(ResponseHeadTest, ReadsTheStatusOfEveryVersion) {
  for (const char* line : {"HTTP/1.0 200 OK", "HTTP/1.1 200", "HTTP/2 200", "http/1.1 200 ok"}) {
    EXPECT_EQ(Read({line, ""}), "");
    EXPECT_EQ(head_.status(), 200) << line;
    EXPECT_TRUE(head_.complete());
  }
}

TEST_F(ResponseHeadTest, RefusesAStatusLineWithoutAVersionOrAStatus) {
  for (const char* line : {"HTTP/1.1 2000 OK", "HTTP/1.1 20", "HTTP/1.1 099", "HTTP/1.1 +200",
                           "HTTP/1.1 two", "HTTP/1.1", "HTTP/1.1 ", "HTTP//1.1 200", "HTTP/ 200",
                           "HTTP/1.1 \r200 OK", "HTTP/1.1\t200 OK"}) {
    EXPECT_EQ(Read({line}), "the response's status line is malformed") << line;
    EXPECT_EQ(head_.status(), 0) << line;
  }
}

TEST_F(ResponseHeadTest, ForgetsAnInterimResponse) {
  EXPECT_EQ(Add({"HTTP/1.1 103 Early Hints", "Content-Encoding: gzip", "Content-Length: 5",
                 "Location: /old", "X-Old: 1", ""}),
            "");
  EXPECT_FALSE(head_.complete());
  EXPECT_EQ(Add({"HTTP/1.1 301 OK", "Content-Length: 7", ""}), "");
  EXPECT_TRUE(head_.complete());
  EXPECT_EQ(head_.status(), 301);
  EXPECT_FALSE(head_.is_gzip());
  EXPECT_FALSE(head_.IsRedirect());
  EXPECT_EQ(head_.content_length(), 7U);
  EXPECT_EQ(head_.fields().ToMap().size(), 1U);
}

TEST_F(ResponseHeadTest, RefusesLinesOutOfPlace) {
  EXPECT_EQ(Add({"X-One: 1"}), kOutOfPlace);
  ExpectRefused({"X-One: 1|HTTP/1.1 404 Not Found"}, kNoField);
  ExpectRefused({"|HTTP/1.1 404 Not Found"}, kOutOfPlace);
}

TEST_F(ResponseHeadTest, RefusesAnotherProtocol) {
  EXPECT_EQ(Add({"HTTP/1.1 101 Switching Protocols"}), "the response switches the protocol");
}

TEST_F(ResponseHeadTest, TrailersChangeNothing) {
  EXPECT_EQ(Add({kOk, "X-A: 1", ""}), "");
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
    EXPECT_EQ(Read({line, "location:", "LOCATION: /a ", "Location: /b", ""}), "");
    EXPECT_EQ(head_.IsRedirect(), is_redirect) << status;
    EXPECT_EQ(head_.location(), "/a");
    EXPECT_EQ(Read({line, "Location: ", ""}), "");
    EXPECT_FALSE(head_.IsRedirect()) << status;
  }
}

TEST_F(ResponseHeadTest, RefusesLinesWithoutAName) {
  ExpectRefused({"garbage", ": value", " continues nothing", "\tcontinues nothing"}, kNoField);
}

TEST_F(ResponseHeadTest, RefusesNulInAHeaderLine) {
  EXPECT_EQ(Add({kOk}), "");
  EXPECT_TRUE(head_.AddLine(std::string_view("X-A: 1\0\r\n", 9)));
}

TEST_F(ResponseHeadTest, RecognizesGzip) {
  for (const char* line : {"Content-Encoding: gzip", "content-encoding:X-GZIP"}) {
    EXPECT_EQ(Read({kOk, line, ""}), "");
    EXPECT_TRUE(head_.is_gzip()) << line;
  }
  for (const char* line : {"Content-Encoding: identity", "Content-Encoding:"}) {
    EXPECT_EQ(Read({kOk, line, ""}), "");
    EXPECT_FALSE(head_.is_gzip()) << line;
  }
}

TEST_F(ResponseHeadTest, RefusesOtherEncodings) {
  ExpectRefused({"Content-Encoding: br", "Content-Encoding: gzip, gzip", "Content-Encoding: none",
                 "Content-Encoding: gzip|Content-Encoding: x-gzip"},
                "the response has a content encoding that was not offered");
  ExpectRefused(
      {"Transfer-Encoding: gzip", "Transfer-Encoding: gzip, chunked",
       "Transfer-Encoding: identityx", "Transfer-Encoding: chunked|Transfer-Encoding: gzip"},
      "the response has a transfer encoding that was not offered");
  EXPECT_EQ(Read({kOk, "TRANSFER-ENCODING: Chunked"}), "");
}

TEST_F(ResponseHeadTest, ChunksOverrideTheLength) {
  EXPECT_EQ(Add({kOk, "Content-Length: 5", "Transfer-Encoding: chunked"}), "");
  EXPECT_EQ(head_.content_length(), std::nullopt);
}

TEST_F(ResponseHeadTest, RefusesALengthBesideIdentityTransferEncoding) {
  ExpectRefused({"Transfer-Encoding: identity|Content-Length: 5"},
                "the response has both Content-Length and Transfer-Encoding: identity");
}

TEST_F(ResponseHeadTest, RefusesABlankBeforeTheColonOfAFramingField) {
  ExpectRefused({"Content-Length : 5", "Transfer-Encoding\t: chunked", "Content-Encoding : gzip"},
                "the response has a blank in a header name");
  EXPECT_EQ(Read({kOk, "X-Other : 5"}), "");
}

TEST_F(ResponseHeadTest, RefusesAContinuationOfAFramingField) {
  ExpectRefused(
      {"Content-Length: 5| 5", "Transfer-Encoding: chunked| gzip", "Content-Encoding:| gzip"},
      "the response folds a header that frames its body");
  EXPECT_EQ(Read({kOk, "Content-Length: 5", "X-Other: 1", " 2"}), "");
}

TEST_F(ResponseHeadTest, RefusesALengthThatIsNotANumber) {
  ExpectRefused({"Content-Length: x", "Content-Length: 5x", "Content-Length: -5",
                 "Content-Length:", "Content-Length: 99999999999999999999999999",
                 "Content-Length: 5,", "Content-Length: 5, x"},
                "the response's Content-Length is not a number");
}

TEST_F(ResponseHeadTest, RefusesTwoLengthsAndAcceptsOneRepeated) {
  EXPECT_EQ(Read({kOk, "Content-Length: 5", "content-length: 5"}), "");
  EXPECT_EQ(head_.content_length(), 5U);
  EXPECT_EQ(Read({kOk, "Content-Length: 6, 6,06"}), "");
  EXPECT_EQ(head_.content_length(), 6U);
  ExpectRefused({"Content-Length: 5|content-length: 5|Content-Length: 6",
                 "Content-Length: 6, 6,06|Content-Length: 6, 7"},
                "the response has two different lengths");
}

TEST_F(ResponseHeadTest, SomeStatusesHaveNoBody) {
  for (const int status : {200, 204, 205, 304, 404}) {
    EXPECT_EQ(Read({"HTTP/1.1 " + std::to_string(status) + " Text", ""}), "");
    EXPECT_EQ(head_.HasNoBody(), status == 204 || status == 304) << status;
  }
}

TEST_F(ResponseHeadTest, LimitOfAllLinesIsExact) {
  const std::string start = std::string(kOk) + "\r\nX-Long: ";
  EXPECT_EQ(Add({kOk, "X-Long: " + std::string(ResponseHead::kMaxBytes - start.size() - 2, 'x')}),
            "");
  EXPECT_EQ(Add({""}), kTooLong);
}

TEST_F(ResponseHeadTest, InterimResponsesShareTheLimit) {
  const std::string line = "X-Long: " + std::string(ResponseHead::kMaxBytes / 2, 'x');
  EXPECT_EQ(Add({"HTTP/1.1 100 Continue", line, ""}), "");
  EXPECT_EQ(Add({kOk, line}), kTooLong);
}

TEST_F(ResponseHeadTest, MovesWithItsFoldedHeader) {
  EXPECT_EQ(Add({kOk, "X-A: one"}), "");
  ResponseHead moved(std::move(head_));
  EXPECT_FALSE(moved.AddLine(" two\r\n"));
  EXPECT_EQ(moved.fields().ToMap().at("X-A"), Text("one two"));
}

}  // namespace
}  // namespace stowra_test

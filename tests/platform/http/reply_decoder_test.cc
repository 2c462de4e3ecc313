// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/reply_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <string_view>

#include "tests/platform/http/gzip_text.h"

namespace stowra_test {
namespace {

using ovrant::internet::ChunkDecoder;
using ovrant::internet::ReplyDecoder;
using ovrant::internet::ResponseHead;
using ovrant::internet::TransferError;

constexpr std::size_t kCap = 1000;

// Adds each line of `head`. False when the decoder refuses one.
bool AddHead(std::string_view head, ReplyDecoder& decoder) {
  while (!head.empty()) {
    const std::string_view line = head.substr(0, head.find('\n') + 1);
    head.remove_prefix(line.size());
    if (!decoder.AddHeaderLine(line)) return false;
  }
  return true;
}

// Adds `body` in pieces of `size` bytes. False when the decoder refuses one.
bool AddBody(std::string_view body, std::size_t size, ReplyDecoder& decoder) {
  for (; !body.empty(); body.remove_prefix(std::min(size, body.size()))) {
    if (!decoder.AddBody(body.substr(0, size))) return false;
  }
  return true;
}

std::string BodyOf(ReplyDecoder& decoder) {
  return std::string(reinterpret_cast<const char*>(decoder.body().data()), decoder.body().size());
}

// A whole reply and what comes of it.
struct Reply {
  const char* name;
  std::string head;
  std::string body;
  TransferError error;
  std::string decoded;
};

void PrintTo(const Reply& reply, std::ostream* out) { *out << reply.name; }

class ReplyTest : public ::testing::TestWithParam<Reply> {};

TEST_P(ReplyTest, IsDecodedInPiecesOfAnySize) {
  const Reply& reply = GetParam();
  for (const std::size_t size : {std::size_t{1}, std::size_t{2}, std::size_t{7}, kCap * 4}) {
    ReplyDecoder decoder(kCap, true);
    const bool taken = AddHead(reply.head, decoder) && AddBody(reply.body, size, decoder);
    EXPECT_EQ(taken, reply.error == TransferError::kNone) << size;
    EXPECT_EQ(decoder.failure().error, reply.error) << size;
    EXPECT_EQ(decoder.MayEnd(), taken) << size;
    EXPECT_TRUE(!taken || BodyOf(decoder) == reply.decoded) << size;
  }
}

#define HEAD "HTTP/1.1 200 OK\r\n"
#define CHUNKED HEAD "Transfer-Encoding: chunked\r\n\r\n"
#define GZIP HEAD "Content-Encoding: gzip\r\n\r\n"
#define REDIRECT "HTTP/1.1 302 Found\r\nLocation: /\r\n"

INSTANTIATE_TEST_SUITE_P(
    Replies, ReplyTest,
    ::testing::Values(
        Reply{"Length", HEAD "Content-Length: 5\r\n\r\n", "hello", TransferError::kNone, "hello"},
        Reply{"NoBody", HEAD "Content-Length: 0\r\n\r\n", "", TransferError::kNone, ""},
        Reply{"NoLength", HEAD "\r\n", "hello", TransferError::kNone, "hello"},
        Reply{"InterimResponses",
              "HTTP/1.1 100 Continue\r\nX: 1\r\n\r\nHTTP/1.1 103 Hints\r\n\r\n" HEAD "\r\n",
              "hello", TransferError::kNone, "hello"},
        Reply{"NoContent", "HTTP/1.1 204 No\r\nContent-Length: 5\r\n\r\n", "", TransferError::kNone,
              ""},
        Reply{"BodyOfNoContent", "HTTP/1.1 204 No\r\n\r\n", "x", TransferError::kMalformed, ""},
        Reply{"LongerThanItsLength", HEAD "Content-Length: 5\r\n\r\n", "hello!",
              TransferError::kMalformed, ""},
        Reply{"Chunks", CHUNKED, "5\r\nhello\r\n6;a=b\r\n world\r\n0\r\n\r\n", TransferError::kNone,
              "hello world"},
        Reply{"ChunksWithTrailers", CHUNKED, "5\r\nhello\r\n0\r\nA: 1\r\nB: 2\r\n\r\n",
              TransferError::kNone, "hello"},
        Reply{"BytesAfterTheChunks", CHUNKED, "0\r\n\r\nmore", TransferError::kNone, ""},
        Reply{"BrokenChunks", CHUNKED, "0x5\r\nhello\r\n0\r\n\r\n", TransferError::kMalformed, ""},
        Reply{"ChunksDespiteALength",
              HEAD "Content-Length: 9\r\nTransfer-Encoding: chunked\r\n\r\n",
              "5\r\nhello\r\n0\r\n\r\n", TransferError::kNone, "hello"},
        Reply{"Gzip", GZIP, Gzip("hello"), TransferError::kNone, "hello"},
        Reply{"MembersOfGzip", GZIP, Gzip("one ") + Gzip("") + Gzip("two"), TransferError::kNone,
              "one two"},
        Reply{"EmptyGzip", GZIP, "", TransferError::kNone, ""},
        Reply{"CorruptGzip", GZIP, "hello", TransferError::kMalformed, ""},
        Reply{"GzipAtTheCap", GZIP, Gzip(std::string(kCap, 'x')), TransferError::kNone,
              std::string(kCap, 'x')},
        Reply{"GzipAboveTheCap", GZIP, Gzip(std::string(kCap + 1, 'x')), TransferError::kTooLarge,
              ""},
        Reply{"GzipInChunks", HEAD "Content-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n\r\n",
              "1\r\n" + Gzip("hello").substr(0, 1) + "\r\n" + "18\r\n" + Gzip("hello").substr(1) +
                  "\r\n0\r\n\r\n",
              TransferError::kNone, "hello"},
        Reply{"BodyAtTheCap", HEAD "\r\n", std::string(kCap, 'x'), TransferError::kNone,
              std::string(kCap, 'x')},
        Reply{"BodyAboveTheCap", HEAD "\r\n", std::string(kCap + 1, 'x'), TransferError::kTooLarge,
              ""},
        Reply{"RedirectAtTheCap", REDIRECT "\r\n", std::string(kCap, 'x'), TransferError::kNone,
              ""},
        Reply{"RedirectAboveTheCap", REDIRECT "\r\n", std::string(kCap + 1, 'x'),
              TransferError::kTooLarge, ""},
        Reply{"RedirectIsNotDecoded", REDIRECT "Content-Encoding: gzip\r\n\r\n", "no gzip",
              TransferError::kNone, ""},
        Reply{"EncodedRedirectAtTheCap", REDIRECT "Content-Encoding: gzip\r\n\r\n",
              std::string(kCap, 'x'), TransferError::kNone, ""},
        Reply{"EncodedRedirectAboveTheCap", REDIRECT "Content-Encoding: gzip\r\n\r\n",
              std::string(kCap + 1, 'x'), TransferError::kTooLarge, ""},
        Reply{"UnknownEncoding", HEAD "Content-Encoding: br\r\n", "", TransferError::kEncoding, ""},
        Reply{"NoStatusLine", "hello\r\n", "", TransferError::kMalformed, ""}),
    [](const auto& test) { return test.param.name; });

TEST(ReplyDecoder, MayEndOnlyAtTheEnd) {
  const struct {
    const char* head;
    std::string body;
  } kReplies[] = {{HEAD "Content-Length: 5\r\n\r\n", "hello"},
                  {CHUNKED, "5\r\nhello\r\n0\r\nA: 1\r\n\r\n"},
                  {REDIRECT "Content-Length: 5\r\n\r\n", "moved"}};
  for (const auto& reply : kReplies) {
    ReplyDecoder decoder(kCap, true);
    EXPECT_FALSE(decoder.MayEnd());
    EXPECT_TRUE(AddHead(reply.head, decoder));
    EXPECT_FALSE(decoder.EndsByClose());
    for (const char byte : reply.body) {
      EXPECT_FALSE(decoder.MayEnd()) << reply.head;
      EXPECT_FALSE(decoder.IsComplete());
      EXPECT_TRUE(decoder.AddBody(std::string_view(&byte, 1)));
    }
    EXPECT_TRUE(decoder.MayEnd()) << reply.head;
    EXPECT_TRUE(decoder.IsComplete());
  }
}

TEST(ReplyDecoder, BodyWithoutALengthEndsByClose) {
  ReplyDecoder decoder(kCap, true);
  EXPECT_FALSE(decoder.EndsByClose());
  EXPECT_TRUE(AddHead(GZIP, decoder));
  EXPECT_TRUE(decoder.EndsByClose());
  const std::string gzip = Gzip("hello");
  EXPECT_TRUE(decoder.AddBody(gzip.substr(0, 10)));
  EXPECT_FALSE(decoder.MayEnd());
  EXPECT_TRUE(decoder.AddBody(gzip.substr(10)));
  EXPECT_TRUE(decoder.MayEnd());
  EXPECT_FALSE(decoder.IsComplete());
}

TEST(ReplyDecoder, HeadWithoutABodyIsCompleteAtOnce) {
  for (const char* head :
       {"HTTP/1.1 204 No\r\n\r\n", "HTTP/1.1 304 No\r\nContent-Length: 5\r\n\r\n",
        "HTTP/1.1 204 No\r\nTransfer-Encoding: chunked\r\n\r\n"}) {
    ReplyDecoder decoder(kCap, true);
    EXPECT_TRUE(AddHead(head, decoder));
    EXPECT_TRUE(decoder.IsComplete()) << head;
    EXPECT_FALSE(decoder.EndsByClose()) << head;
  }
}

TEST(ReplyDecoder, InterimResponseIsNotTheReply) {
  ReplyDecoder decoder(kCap, true);
  EXPECT_TRUE(AddHead("HTTP/1.1 100 Continue\r\n\r\n", decoder));
  EXPECT_FALSE(decoder.MayEnd());
  EXPECT_FALSE(decoder.EndsByClose());
}

TEST(ReplyDecoder, RedirectIsTheReplyIfNoneIsFollowed) {
  for (const bool follows : {true, false}) {
    ReplyDecoder decoder(kCap, follows);
    EXPECT_TRUE(AddHead(REDIRECT "Content-Length: 5\r\n\r\n", decoder));
    EXPECT_EQ(decoder.IsFollowed(), follows);
    EXPECT_TRUE(decoder.AddBody("moved"));
    EXPECT_EQ(BodyOf(decoder), follows ? "" : "moved");
    EXPECT_EQ(decoder.wire_bytes(), 5U);
  }
}

TEST(ReplyDecoder, IsFollowedOnlyAfterTheHead) {
  ReplyDecoder decoder(kCap, true);
  EXPECT_TRUE(AddHead(REDIRECT, decoder));
  EXPECT_FALSE(decoder.IsFollowed());
  EXPECT_TRUE(AddHead("\r\n", decoder));
  EXPECT_TRUE(decoder.IsFollowed());
}

TEST(ReplyDecoder, CountsBytesBeforeAndAfterDecoding) {
  ReplyDecoder decoder(kCap, true);
  const std::string gzip = Gzip(std::string(500, 'x'));
  EXPECT_TRUE(AddHead(GZIP, decoder));
  EXPECT_TRUE(decoder.AddBody(gzip));
  EXPECT_EQ(decoder.wire_bytes(), gzip.size());
  EXPECT_EQ(decoder.body_bytes(), 500U);
}

TEST(ReplyDecoder, ProgressGrowsWithLinesAndBytesOfBody) {
  ReplyDecoder decoder(kCap, true);
  EXPECT_EQ(decoder.progress(), 0U);
  EXPECT_TRUE(AddHead(CHUNKED, decoder));
  std::size_t before = decoder.progress();
  EXPECT_EQ(before, 3U);
  EXPECT_TRUE(decoder.AddBody("5;name"));
  EXPECT_EQ(decoder.progress(), before);
  EXPECT_TRUE(decoder.AddBody("\r\nhel"));
  EXPECT_EQ(decoder.progress(), before + 3);
  EXPECT_TRUE(decoder.AddBody("lo\r\n0\r\n"));
  before = decoder.progress();
  EXPECT_EQ(before, 8U);
  EXPECT_TRUE(decoder.AddBody("Trail"));
  EXPECT_EQ(decoder.progress(), before);
  EXPECT_TRUE(decoder.AddBody("er: 1\r\n"));
  EXPECT_EQ(decoder.progress(), before + 1);
}

// A field line of `size` bytes.
std::string LineOf(std::size_t size) {
  return "X: " + std::string(size - std::string("X: \r\n").size(), 'x') + "\r\n";
}

// Trailers come inside the chunks, or as header lines after the body.
TEST(ReplyDecoder, TrailersOfBothKindsHaveTheLimitOfHeaders) {
  for (const bool as_lines : {true, false}) {
    for (const std::size_t more : {0U, 1U}) {
      ReplyDecoder decoder(kCap, true);
      const std::string head = CHUNKED;
      EXPECT_TRUE(AddHead(head, decoder));
      EXPECT_TRUE(decoder.AddBody("0\r\n"));
      const auto add = [&](const std::string& line) {
        return as_lines ? decoder.AddHeaderLine(line) : decoder.AddBody(line);
      };
      constexpr std::size_t kLine = 1000;
      std::size_t left = ResponseHead::kMaxBytes - head.size() - (as_lines ? 0 : 2) + more;
      for (; left > 2 * kLine; left -= kLine) ASSERT_TRUE(add(LineOf(kLine)));
      const bool taken = add(as_lines ? LineOf(left) : LineOf(left) + "\r\n");
      EXPECT_EQ(taken, more == 0) << as_lines;
      EXPECT_EQ(decoder.failure().error == TransferError::kTooLarge, more > 0);
    }
  }
}

TEST(ReplyDecoder, TrailerAsALineChangesNoHeader) {
  ReplyDecoder decoder(kCap, true);
  EXPECT_TRUE(AddHead(HEAD "Content-Length: 5\r\n\r\n", decoder));
  EXPECT_TRUE(decoder.AddBody("hello"));
  EXPECT_TRUE(AddHead("Content-Length: 9\r\nLocation: /\r\n", decoder));
  EXPECT_TRUE(decoder.IsComplete());
  EXPECT_EQ(decoder.head().content_length(), 5U);
  EXPECT_EQ(decoder.head().location(), "");
}

TEST(ReplyDecoder, FirstRefusalCounts) {
  ReplyDecoder decoder(kCap, true);
  decoder.Refuse(ovrant::internet::kBodyCutOff);
  decoder.Refuse(ovrant::internet::kDropped);
  EXPECT_EQ(decoder.failure().error, TransferError::kCutOff);
  EXPECT_FALSE(AddHead(HEAD, decoder));
  EXPECT_FALSE(decoder.MayEnd());
}

TEST(ReplyDecoder, AcceptsTheLongestSizeLine) {
  for (const std::size_t more : {0U, 1U}) {
    ReplyDecoder decoder(kCap, true);
    EXPECT_TRUE(AddHead(CHUNKED, decoder));
    std::string line = "0;\r\n";
    line.insert(2, ChunkDecoder::kMaxSizeLine - line.size() + more, 'x');
    EXPECT_EQ(decoder.AddBody(line + "\r\n"), more == 0);
    EXPECT_EQ(decoder.MayEnd(), more == 0);
  }
}

}  // namespace
}  // namespace stowra_test

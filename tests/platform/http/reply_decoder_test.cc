// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/reply_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "tests/platform/http/gzip_text.h"
#include "tests/support/text.h"

namespace stowra_test {
namespace {

using ovrant::internet::ReplyDecoder;
using ovrant::internet::ResponseHead;
using ovrant::internet::TransferError;

constexpr TransferError kMalformed = TransferError::kMalformed;
constexpr TransferError kTooLarge = TransferError::kTooLarge;

constexpr std::size_t kCap = 1000;
const std::string kMost(kCap, 'x');
const std::string kMore(kCap + 1, 'x');

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

// A decoder that has taken a head.
struct DecoderAfter final : ReplyDecoder {
  explicit DecoderAfter(std::string_view head, bool follows_redirects = true)
      : ReplyDecoder(kCap, follows_redirects) {
    EXPECT_TRUE(AddHead(head, *this)) << head;
  }
};

#define HEAD "HTTP/1.1 200 OK\r\n"
#define CHUNKED HEAD "Transfer-Encoding: chunked\r\n\r\n"
#define GZIP HEAD "Content-Encoding: gzip\r\n\r\n"
#define REDIRECT "HTTP/1.1 302 Found\r\nLocation: /\r\n"

// A whole reply and what comes of it.
const struct {
  const char* name;
  std::string head;
  std::string body;
  std::string decoded;
  TransferError error = TransferError::kNone;
} kWholeReplies[] = {
    {"Length", HEAD "Content-Length: 5\r\n\r\n", "hello", "hello"},
    {"NoBody", HEAD "Content-Length: 0\r\n\r\n", "", ""},
    {"NoLength", HEAD "\r\n", "hello", "hello"},
    {"InterimResponses",
     "HTTP/1.1 100 Continue\r\nX: 1\r\n\r\nHTTP/1.1 103 Hints\r\n\r\n" HEAD "\r\n", "hello",
     "hello"},
    {"NoContent", "HTTP/1.1 204 No\r\nContent-Length: 5\r\n\r\n", "", ""},
    {"BodyOfNoContent", "HTTP/1.1 204 No\r\n\r\n", "x", "", kMalformed},
    {"LongerThanItsLength", HEAD "Content-Length: 5\r\n\r\n", "hello!", "", kMalformed},
    {"Chunks", CHUNKED, "5\r\nhello\r\n6;a=b\r\n world\r\n0\r\n\r\n", "hello world"},
    {"ChunksWithTrailers", CHUNKED, "5\r\nhello\r\n0\r\nA: 1\r\nB: 2\r\n\r\n", "hello"},
    {"BytesAfterTheChunks", CHUNKED, "0\r\n\r\nmore", ""},
    {"BrokenChunks", CHUNKED, "0x5\r\nhello\r\n0\r\n\r\n", "", kMalformed},
    {"ChunksDespiteALength", HEAD "Content-Length: 9\r\nTransfer-Encoding: chunked\r\n\r\n",
     "5\r\nhello\r\n0\r\n\r\n", "hello"},
    {"Gzip", GZIP, Gzip("hello"), "hello"},
    {"MembersOfGzip", GZIP, Gzip("one ") + Gzip("") + Gzip("two"), "one two"},
    {"EmptyGzip", GZIP, "", ""},
    {"CorruptGzip", GZIP, "hello", "", kMalformed},
    {"GzipAtTheCap", GZIP, Gzip(kMost), kMost},
    {"GzipAboveTheCap", GZIP, Gzip(kMore), "", kTooLarge},
    {"GzipInChunks", HEAD "Content-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n\r\n",
     "1\r\n" + Gzip("hello").substr(0, 1) + "\r\n" + "18\r\n" + Gzip("hello").substr(1) +
         "\r\n0\r\n\r\n",
     "hello"},
    {"BodyAtTheCap", HEAD "\r\n", kMost, kMost},
    {"BodyAboveTheCap", HEAD "\r\n", kMore, "", kTooLarge},
    {"RedirectAtTheCap", REDIRECT "\r\n", kMost, ""},
    {"RedirectAboveTheCap", REDIRECT "\r\n", kMore, "", kTooLarge},
    {"RedirectIsNotDecoded", REDIRECT "Content-Encoding: gzip\r\n\r\n", "no gzip", ""},
    {"EncodedRedirectAtTheCap", REDIRECT "Content-Encoding: gzip\r\n\r\n", kMost, ""},
    {"EncodedRedirectAboveTheCap", REDIRECT "Content-Encoding: gzip\r\n\r\n", kMore, "", kTooLarge},
    {"UnknownEncoding", HEAD "Content-Encoding: br\r\n", "", "", TransferError::kEncoding},
    {"NoStatusLine", "hello\r\n", "", "", kMalformed},
};

TEST(ReplyDecoder, DecodesRepliesInPiecesOfAnySize) {
  for (const auto& reply : kWholeReplies) {
    for (const std::size_t size : {std::size_t{1}, std::size_t{2}, std::size_t{7}, kCap * 4}) {
      ReplyDecoder decoder(kCap, true);
      const bool taken = AddHead(reply.head, decoder) && AddBody(reply.body, size, decoder);
      EXPECT_EQ(taken, reply.error == TransferError::kNone) << reply.name << size;
      EXPECT_EQ(decoder.failure().error, reply.error) << reply.name << size;
      EXPECT_EQ(decoder.MayEnd(), taken) << reply.name << size;
      EXPECT_TRUE(!taken || BodyOf(decoder) == reply.decoded) << reply.name << size;
    }
  }
}

TEST(ReplyDecoder, MayEndOnlyAtTheEnd) {
  EXPECT_FALSE(ReplyDecoder(kCap, true).MayEnd());
  const struct {
    const char* head;
    std::string body;
  } kReplies[] = {{HEAD "Content-Length: 5\r\n\r\n", "hello"},
                  {CHUNKED, "5\r\nhello\r\n0\r\nA: 1\r\n\r\n"},
                  {REDIRECT "Content-Length: 5\r\n\r\n", "moved"}};
  for (const auto& reply : kReplies) {
    DecoderAfter decoder(reply.head);
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
  EXPECT_FALSE(ReplyDecoder(kCap, true).EndsByClose());
  DecoderAfter decoder(GZIP);
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
    const DecoderAfter decoder(head);
    EXPECT_TRUE(decoder.IsComplete()) << head;
    EXPECT_FALSE(decoder.EndsByClose()) << head;
  }
}

TEST(ReplyDecoder, InterimResponseIsNotTheReply) {
  const DecoderAfter decoder("HTTP/1.1 100 Continue\r\n\r\n");
  EXPECT_FALSE(decoder.MayEnd());
  EXPECT_FALSE(decoder.EndsByClose());
}

TEST(ReplyDecoder, RedirectIsTheReplyIfNoneIsFollowed) {
  for (const bool follows : {true, false}) {
    DecoderAfter decoder(REDIRECT "Content-Length: 5\r\n\r\n", follows);
    EXPECT_EQ(decoder.IsFollowed(), follows);
    EXPECT_TRUE(decoder.AddBody("moved"));
    EXPECT_EQ(BodyOf(decoder), follows ? "" : "moved");
    EXPECT_EQ(decoder.wire_bytes(), 5U);
  }
}

TEST(ReplyDecoder, IsFollowedOnlyAfterTheHead) {
  DecoderAfter decoder(REDIRECT);
  EXPECT_FALSE(decoder.IsFollowed());
  EXPECT_TRUE(AddHead("\r\n", decoder));
  EXPECT_TRUE(decoder.IsFollowed());
}

TEST(ReplyDecoder, ProgressGrowsWithLinesAndBytesOfBody) {
  EXPECT_EQ(ReplyDecoder(kCap, true).progress(), 0U);
  DecoderAfter decoder(CHUNKED);
  EXPECT_EQ(decoder.progress(), 3U);
  const std::pair<const char*, std::size_t> kSteps[] = {
      {"5;name", 3}, {"\r\nhel", 6}, {"lo\r\n0\r\n", 8}, {"Trail", 8}, {"er: 1\r\n", 9}};
  for (const auto& [bytes, progress] : kSteps) {
    EXPECT_TRUE(decoder.AddBody(bytes));
    EXPECT_EQ(decoder.progress(), progress) << bytes;
  }
}

// A field line of `size` bytes.
std::string LineOf(std::size_t size) {
  return "X: " + std::string(size - std::string("X: \r\n").size(), 'x') + "\r\n";
}

// Trailers come inside the chunks, or as header lines after the body.
TEST(ReplyDecoder, TrailersOfBothKindsHaveTheLimitOfHeaders) {
  for (const bool as_lines : {true, false}) {
    for (const std::size_t more : {0U, 1U}) {
      DecoderAfter decoder(CHUNKED);
      EXPECT_TRUE(decoder.AddBody("0\r\n"));
      const auto add = [&](const std::string& line) {
        return as_lines ? decoder.AddHeaderLine(line) : decoder.AddBody(line);
      };
      constexpr std::size_t kLine = 1000;
      std::size_t left =
          ResponseHead::kMaxBytes - std::string_view(CHUNKED).size() - (as_lines ? 0 : 2) + more;
      for (; left > 2 * kLine; left -= kLine) ASSERT_TRUE(add(LineOf(kLine)));
      const bool taken = add(as_lines ? LineOf(left) : LineOf(left) + "\r\n");
      EXPECT_EQ(taken, more == 0) << as_lines;
      EXPECT_EQ(decoder.failure().error == TransferError::kTooLarge, more > 0);
    }
  }
}

TEST(ReplyDecoder, FirstRefusalCounts) {
  ReplyDecoder decoder(kCap, true);
  decoder.Refuse(ovrant::internet::kBodyCutOff);
  decoder.Refuse(ovrant::internet::kDropped);
  EXPECT_EQ(decoder.failure().error, TransferError::kCutOff);
  EXPECT_FALSE(AddHead(HEAD, decoder));
  EXPECT_FALSE(decoder.MayEnd());
}

}  // namespace
}  // namespace stowra_test

// SPDX-License-Identifier: MIT
// Compares ReplyDecoder with a second reader. The input is three bytes of choices and the reply.
//
// The reply's lines go to the decoder one by one, and the rest in pieces of any size. Marks in the
// reply: "<<BODY>>" begins the body early, "<<LINES>>" ends it and begins further lines, "<<LONG>>"
// stands for 8,180 characters.

#include "common_stowraapi/platform/http/reply_decoder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "fuzz/platform/http/joined_fields.h"
#include "fuzz/platform/http/model.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

namespace {

using ovrant::internet::ReplyDecoder;
using ovrant::internet::TransferError;
using stowra_fuzz::Fault;
using stowra_fuzz::ReplyBody;
using stowra_fuzz::ReplyHead;

constexpr std::string_view kBodyMark = "<<BODY>>";
constexpr std::string_view kLinesMark = "<<LINES>>";
constexpr std::string_view kLongMark = "<<LONG>>";
constexpr std::size_t kLong = 8180;

// Marks that count. Some are enough for the line with a chunk's size. Many exceed 256 KiB, but not
// what a gzip stream may have beyond the cap. They are slow, so few inputs have many.
constexpr int kSome = 2;
constexpr int kMany = 40;
constexpr std::uint8_t kChoosesMany = 0xF0;

std::string Lengthened(std::string_view text, int most) {
  std::string out;
  for (int i = 0; i < most; ++i) {
    const std::size_t mark = text.find(kLongMark);
    if (mark == std::string_view::npos) break;
    out += text.substr(0, mark);
    out.append(kLong, 'x');
    text.remove_prefix(mark + kLongMark.size());
  }
  return out += text;
}

// Splits at the first mark. Without one, the second part is empty.
std::pair<std::string_view, std::string_view> SplitAt(std::string_view mark,
                                                      std::string_view text) {
  const std::size_t at = text.find(mark);
  if (at == std::string_view::npos) return {text, {}};
  return {text.substr(0, at), text.substr(at + mark.size())};
}

TransferError ErrorFor(Fault fault) {
  switch (fault) {
    case Fault::kMalformed:
      return TransferError::kMalformed;
    case Fault::kTooLarge:
      return TransferError::kTooLarge;
    case Fault::kEncoding:
      return TransferError::kEncoding;
    case Fault::kNone:
      break;
  }
  return TransferError::kNone;
}

// Sizes of pieces: all at once, single bytes, or pseudo-random. Long bodies get longer pieces.
class Pieces {
 public:
  Pieces(std::uint8_t seed, std::size_t length) : seed_(seed), factor_(1 + length / 4096) {}

  std::size_t Next(std::size_t left) {
    if (seed_ == 0) return left;
    if (seed_ == 1) return std::min(left, factor_);
    state_ = state_ * 1'664'525 + seed_;
    return std::min(left, factor_ * (state_ >> 26));
  }

 private:
  const std::uint8_t seed_;
  const std::size_t factor_;
  std::uint32_t state_ = 1'013'904'223;
};

std::string_view TakeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1);
  text.remove_prefix(line.size());
  return line;
}

// Adds the lines. All are taken but the last one, if the head has a fault.
void AddHead(const ReplyHead& head, std::string_view lines, ReplyDecoder& decoder) {
  for (std::size_t left = head.lines; left > 0; --left) {
    const bool is_good = head.fault == Fault::kNone || left > 1;
    FUZZ_CHECK(decoder.AddHeaderLine(TakeLine(lines)) == is_good);
  }
  FUZZ_CHECK(lines.empty());
  FUZZ_CHECK(decoder.failure().error == ErrorFor(head.fault));
  FUZZ_CHECK(decoder.head().bytes() == head.bytes);
  if (head.fault != Fault::kNone) return;
  FUZZ_CHECK(decoder.head().complete() == head.is_whole);
  FUZZ_CHECK(decoder.head().status() == head.status);
  FUZZ_CHECK(decoder.head().is_gzip() == head.is_gzip);
  FUZZ_CHECK(decoder.head().is_chunked() == head.is_chunked);
  FUZZ_CHECK(decoder.head().content_length() == (head.is_chunked ? std::nullopt : head.length));
  FUZZ_CHECK(decoder.head().location() == head.location);
  FUZZ_CHECK(decoder.head().IsRedirect() == head.IsRedirect());
  stowra_fuzz::CheckFields(head.fields, decoder.head().fields().ToMap());
}

bool AddBody(std::string_view body, std::uint8_t seed, ReplyDecoder& decoder) {
  Pieces pieces(seed, body.size());
  while (!body.empty()) {
    // A copy of the exact size lets a sanitizer see a read past the end.
    const std::string piece(body.substr(0, pieces.Next(body.size())));
    if (!decoder.AddBody(piece)) return false;
    body.remove_prefix(piece.size());
  }
  return true;
}

void CheckRefused(const ReplyDecoder& decoder) {
  FUZZ_CHECK(decoder.failure());
  FUZZ_CHECK(!decoder.MayEnd());
  FUZZ_CHECK(!decoder.IsComplete());
}

void CheckTaken(const ReplyHead& head, const ReplyBody& body, ReplyDecoder& decoder) {
  const bool has_body = head.is_whole && !head.HasNoBody();
  const bool ends_by_close = has_body && !head.is_chunked && !head.IsCounted();
  FUZZ_CHECK(!decoder.failure());
  FUZZ_CHECK(decoder.MayEnd() == body.is_whole);
  FUZZ_CHECK(decoder.EndsByClose() == ends_by_close);
  FUZZ_CHECK(decoder.IsComplete() == (body.is_whole && !ends_by_close));
  FUZZ_CHECK(decoder.wire_bytes() == body.payload);
  FUZZ_CHECK(decoder.progress() == head.lines + body.payload + body.trailer_lines);
  FUZZ_CHECK(decoder.body_bytes() == body.decoded.size());
  FUZZ_CHECK(
      std::equal(body.decoded.begin(), body.decoded.end(), decoder.body().data(),
                 [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; }));
}

// Adds lines behind the body, which may only be too many.
void AddTrailers(std::string_view lines, std::size_t bytes, ReplyDecoder& decoder) {
  const std::size_t progress = decoder.progress();
  const bool may_end = decoder.MayEnd();
  std::size_t count = 0;
  while (!lines.empty()) {
    const std::string_view line = TakeLine(lines);
    bytes += line.size();
    const bool is_taken = decoder.AddHeaderLine(line);
    FUZZ_CHECK(is_taken == (bytes <= stowra_fuzz::kMostHeadBytes));
    if (!is_taken) return CheckRefused(decoder);
    FUZZ_CHECK(decoder.progress() == progress + ++count);
    FUZZ_CHECK(decoder.MayEnd() == may_end);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  stowra_fuzz::Input input(data, size);
  const std::uint8_t choices = input.Byte();
  const bool follows_redirects = choices % 2 == 0;
  const std::size_t cap = input.Byte() * std::size_t{1024};
  const std::uint8_t seed = input.Byte();
  const std::string text = Lengthened(input.Rest(), choices >= kChoosesMany ? kMany : kSome);
  const auto [before, trailers] = SplitAt(kLinesMark, text);
  const auto [lines, after_mark] = SplitAt(kBodyMark, before);

  const ReplyHead head = stowra_fuzz::ReadHead(lines);
  const bool body_is_marked = head.bytes == lines.size();
  const std::string_view rest = body_is_marked ? after_mark : before.substr(head.bytes);
  const ReplyBody body = stowra_fuzz::ReadBody(head, rest, follows_redirects, cap);

  ReplyDecoder decoder(cap, follows_redirects);
  AddHead(head, lines.substr(0, head.bytes), decoder);
  if (head.fault != Fault::kNone) {
    CheckRefused(decoder);
    return 0;
  }
  FUZZ_CHECK(AddBody(rest, seed, decoder) == !body.is_refused);
  if (body.is_refused) {
    CheckRefused(decoder);
    return 0;
  }
  CheckTaken(head, body, decoder);
  if (head.is_whole && !head.is_chunked) AddTrailers(trailers, head.bytes, decoder);
  return 0;
}

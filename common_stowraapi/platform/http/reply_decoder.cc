// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/reply_decoder.h"

#include <algorithm>
#include <cstdint>

#include "common_stowraapi/platform/http/header_text.h"

namespace ovrant::internet {

namespace {

// The most memory that is reserved for an announced length.
constexpr std::size_t kMaxReserve = std::size_t{256} << 20;

// gzip makes incompressible data longer by less than one part in kGzipOverhead. A short stream may
// have kGzipSlack more, for names and many members.
constexpr std::size_t kGzipOverhead = 1024;
constexpr std::size_t kGzipSlack = std::size_t{1} << 20;

// A sink gets what this many bytes of gzip hold, at most about a mebibyte, at a time.
constexpr std::size_t kGzipPiece = 1024;

constexpr Failure kBrokenChunks{TransferError::kMalformed,
                                "the response's chunked body is malformed"};
constexpr Failure kCorruptGzip{TransferError::kMalformed, "the response's gzip stream is corrupt"};
constexpr Failure kTooMuchBody{TransferError::kMalformed,
                               "the response's body is longer than announced"};

}  // namespace

bool ReplyDecoder::AddHeaderLine(std::string_view line) {
  ++lines_;
  const bool is_trailer = head_.complete();
  Refuse(is_trailer ? head_.AddTrailer(line) : head_.AddLine(line));
  if (!is_trailer && head_.complete() && !failure_) EndHead();
  return !failure_;
}

void ReplyDecoder::EndHead() {
  if (head_.is_chunked() && !head_.HasNoBody()) chunks_.emplace();
  if (sink_ != nullptr && !IsFollowed()) Refuse(sink_->Offer(head_.status(), head_.fields()));
}

bool ReplyDecoder::AddBody(std::string_view bytes) {
  if (!chunks_) {
    if (!failure_ && !bytes.empty()) TakePayload(bytes);
    return !failure_;
  }
  while (!failure_ && !bytes.empty()) {
    const std::string_view piece = chunks_->Next(bytes);
    if (!piece.empty()) TakePayload(piece);
  }
  if (chunks_->IsTrailerTooLong()) Refuse(kHeadersTooLong);
  if (chunks_->IsBroken()) Refuse(kBrokenChunks);
  if (head_.bytes() + chunks_->trailer_bytes() > ResponseHead::kMaxBytes) Refuse(kHeadersTooLong);
  return !failure_;
}

void ReplyDecoder::Refuse(const Failure& failure) {
  if (!failure_) failure_ = failure;
}

bool ReplyDecoder::IsComplete() const { return MayEnd() && !EndsByClose(); }

bool ReplyDecoder::EndsByClose() const {
  return head_.complete() && !head_.HasNoBody() && !chunks_ && !head_.content_length();
}

bool ReplyDecoder::MayEnd() const {
  if (failure_ || !head_.complete()) return false;
  if (head_.HasNoBody()) return true;
  if (chunks_ && !chunks_->AtEnd()) return false;
  if (head_.content_length() && *head_.content_length() != wire_bytes_) return false;
  return !gzip_ || gzip_->AtEnd();
}

std::size_t ReplyDecoder::progress() const {
  return lines_ + wire_bytes_ + (chunks_ ? chunks_->trailer_lines() : 0);
}

void ReplyDecoder::TakePayload(std::string_view payload) {
  const auto length = head_.content_length();
  if (wire_bytes_ == 0 && length && !head_.is_gzip() && !IsFollowed() && !IsTakenBySink()) {
    body_.Reserve(std::min({*length, body_cap_, kMaxReserve}));
  }
  const std::size_t before = wire_bytes_;
  wire_bytes_ += payload.size();
  if (!head_.complete() || head_.HasNoBody() || (length && wire_bytes_ > *length)) {
    Refuse(kTooMuchBody);
  } else if (payload.size() > WireCap() - before) {
    Refuse(kBodyTooLarge);
  } else if (!IsFollowed()) {
    Decode(payload);
  }
}

void ReplyDecoder::Decode(std::string_view payload) {
  if (!head_.is_gzip()) {
    TakeDecoded(payload);
  } else if (!IsTakenBySink()) {
    DecodeGzip(payload);
  } else {
    while (!failure_ && !payload.empty()) {
      DecodeGzip(payload.substr(0, kGzipPiece));
      payload.remove_prefix(std::min(payload.size(), kGzipPiece));
      if (failure_) return;
      WriteToSink({reinterpret_cast<const char*>(body_.data()), body_.size()});
      body_.Empty();
    }
  }
}

void ReplyDecoder::TakeDecoded(std::string_view bytes) {
  if (IsTakenBySink()) {
    WriteToSink(bytes);
  } else {
    body_.Append(bytes.data(), bytes.size());
  }
}

void ReplyDecoder::WriteToSink(std::string_view bytes) {
  written_bytes_ += bytes.size();
  Refuse(sink_->Write(bytes));
}

void ReplyDecoder::DecodeGzip(std::string_view payload) {
  if (!gzip_) gzip_.emplace();
  switch (gzip_->Decode(payload.data(), payload.size(), Cap() - written_bytes_, body_)) {
    case GzipDecoder::Result::kOk:
      break;
    case GzipDecoder::Result::kCorrupt:
      Refuse(kCorruptGzip);
      break;
    case GzipDecoder::Result::kTooLarge:
      Refuse(kBodyTooLarge);
      break;
  }
}

// The header of a gzip stream may hold a name of any length, so the wire needs a cap of its own.
std::size_t ReplyDecoder::WireCap() const {
  const std::size_t cap = Cap();
  if (!head_.is_gzip() || IsFollowed()) return cap;
  const std::size_t slack = cap / kGzipOverhead + kGzipSlack;
  return cap > SIZE_MAX - slack ? SIZE_MAX : cap + slack;
}

}  // namespace ovrant::internet

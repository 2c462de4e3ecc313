// SPDX-License-Identifier: MIT
// Reads the reply to one request.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_REPLY_DECODER_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_REPLY_DECODER_H_

#include <cstddef>
#include <optional>
#include <string_view>

#include "common_stowraapi/platform/http/body_buffer.h"
#include "common_stowraapi/platform/http/chunk_decoder.h"
#include "common_stowraapi/platform/http/failure.h"
#include "common_stowraapi/platform/http/gzip_decoder.h"
#include "common_stowraapi/platform/http/response_head.h"
#include "common_stowraapi/platform/http/sink_writer.h"

namespace ovrant::internet {

// Takes the header lines and the body as they came, chunked and compressed, and makes the decoded
// body. Downloads and uploads have the same limits. Header lines and trailing section share
// ResponseHead::kMaxBytes. The decoded body has the cap, or the sink's cap if it takes the body.
// The compressed body may have a little more. ChunkDecoder::kMaxSizeLine limits a line with a size.
//
// The body of a redirect that will be followed counts against the cap and is thrown away undecoded.
//
// For one thread at a time. Calls that throw std::bad_alloc leave a decoder that must not be used.
class ReplyDecoder {
 public:
  // With `follows_redirects` a redirect is not the reply. Any other reply is offered to `sink` when
  // its headers have come. `sink` may be null.
  ReplyDecoder(std::size_t body_cap, bool follows_redirects, SinkWriter* sink = nullptr)
      : body_cap_(body_cap), follows_redirects_(follows_redirects), sink_(sink) {}

  // Adds a status line, a header line, the empty line after them, or a line of the trailing section
  // that did not come inside the body. Adds the next bytes of the body. Both return false when the
  // reply is refused. failure() says why.
  bool AddHeaderLine(std::string_view line);
  bool AddBody(std::string_view bytes);

  const Failure& failure() const { return failure_; }

  // Refuses the reply. The first failure counts.
  void Refuse(const Failure& failure);

  // True when all of a reply has come that says itself how long it is.
  bool IsComplete() const;

  // True when the connection's end is the body's end.
  bool EndsByClose() const;

  // True when the reply could end here: IsComplete, or EndsByClose and nothing inside is open.
  bool MayEnd() const;

  // True for a redirect that will be followed.
  bool IsFollowed() const { return follows_redirects_ && head_.complete() && head_.IsRedirect(); }

  const ResponseHead& head() const { return head_; }
  ResponseHead& head() { return head_; }

  // Empty if a sink takes the body.
  const BodyBuffer& body() const { return body_; }
  BodyBuffer& body() { return body_; }

  // Bytes of body without chunk framing, before and after decompression. Refused bytes count.
  std::size_t wire_bytes() const { return wire_bytes_; }
  std::size_t body_bytes() const { return written_bytes_ + body_.size(); }

  // Grows with each complete line and each byte of body. A part of a line is no progress.
  std::size_t progress() const;

 private:
  void EndHead();
  bool IsTakenBySink() const { return sink_ != nullptr && sink_->takes(); }
  void TakePayload(std::string_view payload);
  void Decode(std::string_view payload);
  void DecodeGzip(std::string_view payload);
  void TakeDecoded(std::string_view bytes);
  void WriteToSink(std::string_view bytes);
  std::size_t Cap() const { return IsTakenBySink() ? sink_->cap() : body_cap_; }
  std::size_t WireCap() const;

  const std::size_t body_cap_;
  const bool follows_redirects_;
  SinkWriter* const sink_;
  ResponseHead head_;
  std::optional<ChunkDecoder> chunks_;
  std::optional<GzipDecoder> gzip_;
  BodyBuffer body_;
  std::size_t lines_ = 0;
  std::size_t wire_bytes_ = 0;
  std::size_t written_bytes_ = 0;  // to the sink
  Failure failure_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_REPLY_DECODER_H_

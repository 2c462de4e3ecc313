// SPDX-License-Identifier: MIT
// A second reader of whole HTTP/1 connections, for replies without ambiguity.

#ifndef FUZZ_PLATFORM_HTTP_WIRE_MODEL_H_
#define FUZZ_PLATFORM_HTTP_WIRE_MODEL_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "fuzz/platform/http/model.h"

namespace stowra_fuzz {

struct HttpOutcome {
  // kUnclear means that libcurl decides before the library sees the bytes.
  enum class Kind { kUnclear, kFailed, kReceived, kRedirect };

  Kind kind = Kind::kUnclear;
  ReplyHead head;
  std::string body;  // decoded
};

// The outcome of a request with one reply, after which the connection closes. It is kRedirect only
// if redirects are followed. `cap` limits the bytes of the decoded body.
HttpOutcome ReadReply(std::string_view bytes, bool follows_redirects, std::size_t cap);

// Whether the bytes hold a status line with that status.
bool HasStatusLine(std::string_view bytes, int status);

}  // namespace stowra_fuzz

#endif  // FUZZ_PLATFORM_HTTP_WIRE_MODEL_H_

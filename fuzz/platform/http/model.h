// A second reader of HTTP/1 replies, for those without ambiguity.

#ifndef FUZZ_PLATFORM_HTTP_MODEL_H_
#define FUZZ_PLATFORM_HTTP_MODEL_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace stowra_fuzz {

struct HttpOutcome {
  // kUnclear means that this reader cannot tell.
  enum class Kind { kUnclear, kFailed, kReceived, kRedirect };

  Kind kind = Kind::kUnclear;
  int status = 0;
  std::string body;                                          // decoded
  std::vector<std::pair<std::string, std::string>> headers;  // in order, spelt as received
};

// The outcome of a request with one reply, after which the connection closes. It is kRedirect only
// if redirects are followed. `cap` limits the bytes of the decoded body.
HttpOutcome ReadReply(std::string_view bytes, bool follows_redirects, std::size_t cap);

// Whether the bytes hold a status line with that status.
bool HasStatusLine(std::string_view bytes, int status);

}  // namespace stowra_fuzz

#endif  // FUZZ_PLATFORM_HTTP_MODEL_H_

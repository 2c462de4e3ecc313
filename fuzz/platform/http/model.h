// A second reading of HTTP/1 replies, of those that leave no doubt.

#ifndef FUZZ_PLATFORM_HTTP_MODEL_H_
#define FUZZ_PLATFORM_HTTP_MODEL_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace stowra_fuzz {

struct HttpOutcome {
  // kUnclear: this reading cannot tell.
  enum class Kind { kUnclear, kFailed, kReceived, kRedirect };

  Kind kind = Kind::kUnclear;
  int status = 0;
  std::string body;                                          // decoded
  std::vector<std::pair<std::string, std::string>> headers;  // in their order, as they are spelt
};

// What the only reply to a request is when the connection closes behind it. A redirect is one if
// redirects are followed. `cap`: bytes of decoded body beyond which it fails.
HttpOutcome ReadReply(std::string_view bytes, bool follows_redirects, std::size_t cap);

// Whether the bytes have a status line with that status.
bool HasStatusLine(std::string_view bytes, int status);

}  // namespace stowra_fuzz

#endif  // FUZZ_PLATFORM_HTTP_MODEL_H_

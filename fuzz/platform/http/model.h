// SPDX-License-Identifier: MIT
// A second reader of HTTP replies, written apart from the library's.

#ifndef FUZZ_PLATFORM_HTTP_MODEL_H_
#define FUZZ_PLATFORM_HTTP_MODEL_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace stowra_fuzz {

// The most bytes of header and trailer lines together, of the line with a chunk's size, and of one
// line of the trailing section.
inline constexpr std::size_t kMostHeadBytes = std::size_t{256} << 10;
inline constexpr std::size_t kMostSizeLine = std::size_t{8} << 10;
inline constexpr std::size_t kMostTrailerLine = 4000;

enum class Fault { kNone, kMalformed, kTooLarge, kEncoding };

// The lines of a reply up to the empty line, or up to the first line that is refused. All but the
// counts describes the response whose status line came last.
struct ReplyHead {
  Fault fault = Fault::kNone;
  bool is_whole = false;
  std::size_t lines = 0;
  std::size_t bytes = 0;
  int status = 0;
  std::vector<std::pair<std::string, std::string>> fields;  // in order, spelt as received
  bool is_gzip = false;
  bool is_chunked = false;
  std::optional<std::uint64_t> length;
  std::string location;

  bool HasNoBody() const { return status == 204 || status == 304; }
  bool IsCounted() const { return length && !is_chunked; }
  bool IsRedirect() const;
};

// Reads the head at the beginning of `text`. The last line may lack its end.
ReplyHead ReadHead(std::string_view text);

// The result of a head and all body bytes.
struct ReplyBody {
  bool is_refused = false;
  bool is_whole = false;    // it may end here
  std::size_t payload = 0;  // bytes without chunk framing
  std::size_t trailer_lines = 0;
  std::string decoded;  // empty for a redirect that is followed
};

// `cap` limits the decoded body. `rest` is everything after the head.
ReplyBody ReadBody(const ReplyHead& head, std::string_view rest, bool follows_redirects,
                   std::size_t cap);

}  // namespace stowra_fuzz

#endif  // FUZZ_PLATFORM_HTTP_MODEL_H_

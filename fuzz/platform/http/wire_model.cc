// SPDX-License-Identifier: MIT
#include "fuzz/platform/http/wire_model.h"

#include <algorithm>

namespace stowra_fuzz {
namespace {

using Kind = HttpOutcome::Kind;

constexpr char kHexDigits[] = "0123456789abcdefABCDEF";

// Sizes of chunks that libcurl's own reader takes too.
constexpr std::size_t kPlainSize = 16;

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return lower;
}

bool IsMadeOf(std::string_view text, const char* characters) {
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

bool IsPlainStatusLine(std::string_view line) {
  const bool has_version = line.substr(0, 9) == "HTTP/1.1 " || line.substr(0, 9) == "HTTP/1.0 ";
  return has_version && line.size() >= 12 && IsMadeOf(line.substr(9, 3), "0123456789") &&
         (line.size() == 12 || line[12] == ' ') && line.find('\0') == std::string_view::npos;
}

// Takes a line that ends in CR LF and holds no other CR. Clears `is_plain` if the next line is
// another one.
std::string_view TakePlainLine(std::string_view& text, bool& is_plain) {
  const std::string_view line = text.substr(0, text.find("\r\n"));
  is_plain = line.size() < text.size() && line.find_first_of("\r\n") == std::string_view::npos;
  text.remove_prefix(std::min(line.size() + 2, text.size()));
  return line;
}

// libcurl finds the lines and reads the status lines before the library does.
bool IsPlainHead(std::string_view text) {
  bool is_plain = true;
  bool is_status_next = true;
  while (!text.empty() && is_plain) {
    const std::string_view line = TakePlainLine(text, is_plain);
    if (is_status_next && !IsPlainStatusLine(line)) return false;
    // Without a blank line before it, it is a field without a colon.
    if (!is_status_next && Lower(line.substr(0, 5)) == "http/") return false;
    is_status_next = line.empty();
  }
  return is_plain;
}

// libcurl also reads the chunks, and finds the connection's end by them.
bool IsPlainChunks(std::string_view text) {
  bool is_plain = true;
  while (is_plain) {
    const std::string digits(TakePlainLine(text, is_plain));
    if (!is_plain || digits.size() > kPlainSize || !IsMadeOf(digits, kHexDigits)) return false;
    const std::size_t size = std::stoull(digits, nullptr, 16);
    if (size == 0) break;
    text.remove_prefix(std::min(size, text.size()));
    is_plain = TakePlainLine(text, is_plain).empty() && is_plain;
  }
  for (std::string_view line = "-"; is_plain && !line.empty();) {
    line = TakePlainLine(text, is_plain);
    if (line.size() > kMostTrailerLine) return false;
  }
  return is_plain;
}

// What libcurl passes on of the bytes after the head.
std::string_view Delivered(const ReplyHead& head, std::string_view rest) {
  if (head.HasNoBody()) return "";
  return head.IsCounted() ? rest.substr(0, static_cast<std::size_t>(*head.length)) : rest;
}

// A redirect to a path of any server leads to the next reply.
Kind KindOfRedirect(const std::string& location) {
  for (const char* scheme : {"ftp://", "file:///"}) {
    if (Lower(location).rfind(scheme, 0) == 0 && IsMadeOf(location, "abcdefghijklmnopqrstuvwxyz:/"))
      return Kind::kFailed;
  }
  const bool is_path = location[0] == '/' && location.substr(0, 2) != "//";
  return is_path && IsMadeOf(location, "0123456789abcdefghijklmnopqrstuvwxyz/?=&") ? Kind::kRedirect
                                                                                   : Kind::kUnclear;
}

}  // namespace

HttpOutcome ReadReply(std::string_view bytes, bool follows_redirects, std::size_t cap) {
  HttpOutcome outcome;
  outcome.head = ReadHead(bytes);
  const ReplyHead& head = outcome.head;
  const std::string_view lines = bytes.substr(0, head.bytes);
  if (Lower(bytes.substr(0, 5)) != "http/") {
    outcome.kind = Kind::kFailed;
  } else if (IsPlainHead(lines)) {
    const std::string_view rest = bytes.substr(head.bytes);
    const ReplyBody body = ReadBody(head, Delivered(head, rest), follows_redirects, cap);
    const bool is_good = head.fault == Fault::kNone && head.is_whole && body.is_whole;
    const bool is_clear = !head.is_chunked || head.HasNoBody() || IsPlainChunks(rest);
    outcome.body = body.decoded;
    if (!is_good) {
      outcome.kind = Kind::kFailed;
    } else if (is_clear) {
      const bool is_followed = follows_redirects && head.IsRedirect();
      outcome.kind = is_followed ? KindOfRedirect(head.location) : Kind::kReceived;
    }
  }
  return outcome;
}

bool HasStatusLine(std::string_view bytes, int status) {
  const std::string text = Lower(bytes);
  const std::string digits = ' ' + std::to_string(status);
  for (std::size_t at = text.find("http/"); at != std::string::npos;
       at = text.find("http/", at + 1)) {
    const std::string line = text.substr(at, text.find('\n', at) - at);
    if (line.find(digits) != std::string::npos) return true;
  }
  return false;
}

}  // namespace stowra_fuzz

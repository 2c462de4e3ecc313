// SPDX-License-Identifier: MIT
// Rules of HTTP header text (RFC 9110, 5.1 and 5.5), for ASCII only.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_HEADER_TEXT_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_HEADER_TEXT_H_

#include <string>
#include <string_view>

namespace ovrant::internet {

// True for a space, a tab, CR or LF.
inline bool IsHeaderBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// Removes blanks on both sides.
inline std::string_view TrimHeaderText(std::string_view text) {
  while (!text.empty() && IsHeaderBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsHeaderBlank(text.back())) text.remove_suffix(1);
  return text;
}

// Whether `text` begins with a space or a tab. Such a line continues the one before.
inline bool BeginsWithBlank(std::string_view text) {
  return !text.empty() && (text.front() == ' ' || text.front() == '\t');
}

// Whether `text` begins with `prefix`, ignoring the case of ASCII letters.
bool StartsWithIgnoringCase(std::string_view text, std::string_view prefix);

// Whether both are equal, ignoring the case of ASCII letters.
inline bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && StartsWithIgnoringCase(a, b);
}

// Changes ASCII letters only.
std::string ToLowerCase(std::string text);

// Whether the text is valid in a request header.
bool IsHeaderName(std::string_view name);
bool IsHeaderValue(std::string_view value);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_HEADER_TEXT_H_

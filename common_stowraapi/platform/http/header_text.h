// Small rules of HTTP header text (RFC 9110, 5.1 and 5.5), ASCII alone.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_HEADER_TEXT_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_HEADER_TEXT_H_

#include <string_view>

namespace ovrant::internet {

// A space, a tab or part of a line end.
inline bool IsHeaderBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// Without blanks on either side.
inline std::string_view TrimHeaderText(std::string_view text) {
  while (!text.empty() && IsHeaderBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsHeaderBlank(text.back())) text.remove_suffix(1);
  return text;
}

// Whether `text` begins with a space or a tab, as a line does that continues the one before.
inline bool BeginsWithBlank(std::string_view text) {
  return !text.empty() && (text.front() == ' ' || text.front() == '\t');
}

// Whether `text` begins with `prefix` but for the case of ASCII letters.
bool StartsWithIgnoringCase(std::string_view text, std::string_view prefix);

// Equal but for the case of ASCII letters.
inline bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && StartsWithIgnoringCase(a, b);
}

// Whether these can stand in a request's header.
bool IsHeaderName(std::string_view name);
bool IsHeaderValue(std::string_view value);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_HEADER_TEXT_H_

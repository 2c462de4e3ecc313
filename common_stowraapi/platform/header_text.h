// Small rules of HTTP header text (RFC 9110, 5.1 and 5.5), ASCII alone.

#ifndef COMMON_STOWRAAPI_PLATFORM_HEADER_TEXT_H_
#define COMMON_STOWRAAPI_PLATFORM_HEADER_TEXT_H_

#include <string_view>

namespace ovrant::internet {

// Without spaces, tabs and line ends on either side.
std::string_view TrimHeaderText(std::string_view text);

// Equal but for the case of ASCII letters.
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

// Whether `text` begins with `prefix` but for the case of ASCII letters.
bool StartsWithIgnoringCase(std::string_view text, std::string_view prefix);

// Whether these can stand in a request's header.
bool IsHeaderName(std::string_view name);
bool IsHeaderValue(std::string_view value);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HEADER_TEXT_H_

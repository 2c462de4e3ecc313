// SPDX-License-Identifier: MIT
// Removes secrets from texts that a log may show.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_BLANKED_TEXT_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_BLANKED_TEXT_H_

#include <string>
#include <string_view>
#include <vector>

namespace ovrant::internet {

// Replaces user name and password, the values of the query and the fragment of each URL in `text`
// by "***". Rather blanks too much than too little. Throws std::bad_alloc when memory runs out.
std::string BlankUrls(std::string_view text);

// Blanks the lines of a request's or response's head. Each ends with a line feed. Values of secret
// fields go whole, and so does a line that continues one. In the others, URLs are blanked. Fields
// of `more_secrets` (in lower case) are secret too. Throws std::bad_alloc when memory runs out.
std::string BlankHead(std::string_view head, const std::vector<std::string>& more_secrets);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_BLANKED_TEXT_H_

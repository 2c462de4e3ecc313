// SPDX-License-Identifier: MIT
// Where a redirect leads, and which of the caller's headers may go there.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_REDIRECT_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_REDIRECT_H_

#include <string>
#include <string_view>

#include "common_stowraapi/platform/http/failure.h"

namespace ovrant::internet {

// Returns "scheme://host:port" of a URL in lower case and with the port written out. Empty when
// `url` is no http or https URL. Throws std::bad_alloc when memory runs out.
std::string OriginOf(const std::string& url);

// Finds the URL to which `location`, absolute or relative, leads from `url`, and stores it in
// `target`. User name and password of `url` stay on its origin. Elsewhere none are sent, not even
// those in `location`.
//
// A failure leaves `target` unchanged: `location` is not a URL, its scheme is neither http nor
// https, or it leads from https to http. Throws std::bad_alloc when memory runs out.
Failure ResolveRedirect(const std::string& url, const std::string& location, std::string& target);

// Whether a POST becomes a GET.
inline bool BecomesGet(int status) { return status == 301 || status == 302 || status == 303; }

// Whether a header that the caller has set goes along to another origin.
bool MayLeaveOrigin(std::string_view header_name);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_REDIRECT_H_

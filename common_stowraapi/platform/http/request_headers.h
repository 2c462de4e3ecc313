// SPDX-License-Identifier: MIT
// Building the headers of a request from several maps.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_REQUEST_HEADERS_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_REQUEST_HEADERS_H_

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {

// Sets a header and replaces that name in any letter case. A call that throws std::bad_alloc
// changes nothing.
void SetHeader(const ovrant::utils::ovrant_ustring& name,
               const ovrant::utils::ovrant_ustring& value, ovrant::utils::StringMap& headers);

// Sets each header of `added`. Without `all` it sets only those that may go to any origin
// (MayLeaveOrigin). Throws std::bad_alloc when memory runs out.
void AddHeaders(const ovrant::utils::StringMap& added, bool all, ovrant::utils::StringMap& headers);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_REQUEST_HEADERS_H_

// SPDX-License-Identifier: MIT
// Looks up a response's headers.

#ifndef HOST_RESPONSE_HEADERS_H_
#define HOST_RESPONSE_HEADERS_H_

#include "common_stowraapi/platform/ustring.h"

namespace stowra {

// The value of the header `name` in any letter case. Empty without it.
ovrant::utils::ovrant_ustring FindHeader(const ovrant::utils::StringMap& headers,
                                         const ovrant::utils::ovrant_ustring& name);

}  // namespace stowra

#endif  // HOST_RESPONSE_HEADERS_H_

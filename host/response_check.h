// SPDX-License-Identifier: MIT
// Says what is wrong with a response that a service class has refused.

#ifndef HOST_RESPONSE_CHECK_H_
#define HOST_RESPONSE_CHECK_H_

#include <string>
#include <vector>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/platform/ustring.h"

namespace stowra {

// Parses `body` into `document`. On failure returns false with the reason in `why`.
bool LoadResponse(const ovrant::utils::ovrant_ustring& body, ovrant::json::Document& document,
                  std::string& why);

// An error text that names the missing members.
std::string Lacks(const std::vector<std::string>& members);

}  // namespace stowra

#endif  // HOST_RESPONSE_CHECK_H_

// What is wrong with a response that a service class has refused.

#ifndef HOST_RESPONSE_CHECK_H_
#define HOST_RESPONSE_CHECK_H_

#include <string>
#include <vector>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/platform/ustring.h"

namespace stowra {

// True with the response in `document`; otherwise `why` says why there is none.
bool LoadResponse(const ovrant::utils::ovrant_ustring& body, ovrant::json::Document& document,
                  std::string& why);

// Says that a response lacks these members.
std::string Lacks(const std::vector<std::string>& members);

}  // namespace stowra

#endif  // HOST_RESPONSE_CHECK_H_

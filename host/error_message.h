// SPDX-License-Identifier: MIT
// What a server says about a request that it refuses.

#ifndef HOST_ERROR_MESSAGE_H_
#define HOST_ERROR_MESSAGE_H_

#include <string>
#include <string_view>

#include "common_stowraapi/platform/internet_data.h"

namespace stowra {

// The body's first 200 characters on one line, with "..." for the rest. Empty unless `content_type`
// is a text, JSON or XML type.
std::string ErrorMessage(std::string_view content_type, std::string_view body);

// The same of the response that `transport` holds.
std::string ErrorMessage(const ovrant::internet::InternetData& transport);

}  // namespace stowra

#endif  // HOST_ERROR_MESSAGE_H_

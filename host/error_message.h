// SPDX-License-Identifier: MIT
// What a server says about a request that it refuses.

#ifndef HOST_ERROR_MESSAGE_H_
#define HOST_ERROR_MESSAGE_H_

#include <string>
#include <string_view>

#include "common_stowraapi/platform/internet_data.h"

namespace stowra {

// The first line of the server's own error text, at most 200 characters of it and "..." for the
// rest. It is not yet printable (Printable). Empty without one, and for other types.
//   - JSON: the member "message", "error", "detail" or "title" of the object, or of an object
//     "error" in it.
//   - HTML and XML: see HtmlMessage.
//   - text: its first line.
std::string ErrorMessage(std::string_view content_type, std::string_view body);

// The same of the response that `transport` holds.
std::string ErrorMessage(const ovrant::internet::InternetData& transport);

}  // namespace stowra

#endif  // HOST_ERROR_MESSAGE_H_

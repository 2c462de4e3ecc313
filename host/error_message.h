// What a server says of a request that it refuses.

#ifndef HOST_ERROR_MESSAGE_H_
#define HOST_ERROR_MESSAGE_H_

#include <string>
#include <string_view>

namespace stowra {

// The start of a response's body, on one line of no more than two hundred characters: "..." stands
// for the rest. Empty unless `content_type` is that of a text, JSON or XML.
std::string ErrorMessage(std::string_view content_type, std::string_view body);

}  // namespace stowra

#endif  // HOST_ERROR_MESSAGE_H_

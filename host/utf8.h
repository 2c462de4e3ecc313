// Bytes that come from the user's system.

#ifndef HOST_UTF8_H_
#define HOST_UTF8_H_

#include <string_view>

namespace stowra {

// Whether these bytes are UTF-8 throughout: the library's text carries other ones instead of those
// that are not.
bool IsUtf8(std::string_view bytes);

}  // namespace stowra

#endif  // HOST_UTF8_H_

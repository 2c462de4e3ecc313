// SPDX-License-Identifier: MIT
// Checks text that comes from the user's system.

#ifndef HOST_UTF8_H_
#define HOST_UTF8_H_

#include <string_view>

namespace stowra {

// Whether `bytes` are well-formed UTF-8. The library replaces ill-formed bytes by U+FFFD.
bool IsUtf8(std::string_view bytes);

}  // namespace stowra

#endif  // HOST_UTF8_H_

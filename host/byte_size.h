// SPDX-License-Identifier: MIT
// Reads sizes such as 512K.

#ifndef HOST_BYTE_SIZE_H_
#define HOST_BYTE_SIZE_H_

#include <string>

namespace stowra {

// Replaces a size such as "4G" by its number of bytes, "4294967296". K, M, G and T in either case
// stand for powers of 1024. Returns an empty string, or an error text if the size is no number, is
// 0 or does not fit an unsigned long. CLI::Validator takes it for Option::transform.
std::string ReadByteSize(std::string& text);

}  // namespace stowra

#endif  // HOST_BYTE_SIZE_H_

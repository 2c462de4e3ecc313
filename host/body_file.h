// SPDX-License-Identifier: MIT
// Reads a request body that the user gives.

#ifndef HOST_BODY_FILE_H_
#define HOST_BODY_FILE_H_

#include <string>

namespace stowra {

// Reads the whole file, or standard input for "-". If that fails, or if the text is not UTF-8,
// returns false with the reason in `why`. `body` is then unchanged.
bool ReadBodyFile(const std::string& file, std::string& body, std::string& why);

}  // namespace stowra

#endif  // HOST_BODY_FILE_H_

// SPDX-License-Identifier: MIT
// The output of --version.

#ifndef HOST_VERSION_TEXT_H_
#define HOST_VERSION_TEXT_H_

#include <string>

namespace stowra {

// The version of the program, and the two version symbols of the loaded library.
std::string VersionText();

}  // namespace stowra

#endif  // HOST_VERSION_TEXT_H_

// SPDX-License-Identifier: MIT
// Makes a zip archive without compression.

#ifndef HOST_STORED_ZIP_H_
#define HOST_STORED_ZIP_H_

#include <string>
#include <string_view>

namespace stowra {

// A zip archive (PKWARE's APPNOTE, 4.3) that stores one file.
// REQUIRES: `name` is smaller than 64 KiB, and the archive than 4 GiB.
std::string MakeStoredZip(std::string_view name, std::string_view content);

}  // namespace stowra

#endif  // HOST_STORED_ZIP_H_

// The plainest zip archive.

#ifndef HOST_STORED_ZIP_H_
#define HOST_STORED_ZIP_H_

#include <string>
#include <string_view>

namespace stowra {

// An archive (PKWARE's APPNOTE, 4.3) of one file, uncompressed.
// REQUIRES: `name` and `content` of less than 64 KiB and 4 GiB.
std::string MakeStoredZip(std::string_view name, std::string_view content);

}  // namespace stowra

#endif  // HOST_STORED_ZIP_H_

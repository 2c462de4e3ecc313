// SPDX-License-Identifier: MIT
// Looks through a file of any size.

#ifndef HOST_FILE_SCAN_H_
#define HOST_FILE_SCAN_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace stowra {

struct FileScan {
  std::uint64_t size = 0;
  std::string beginning;  // the first two bytes, or fewer
  bool holds_text = false;
};

// Reads the whole file piece by piece and looks for `text`, which must not be empty. On failure
// returns false with the reason in `why`.
bool ScanFile(const std::string& file, std::string_view text, FileScan& scan, std::string& why);

}  // namespace stowra

#endif  // HOST_FILE_SCAN_H_

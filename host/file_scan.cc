// SPDX-License-Identifier: MIT
#include "host/file_scan.h"

#include <algorithm>
#include <cstddef>
#include <system_error>
#include <vector>

#include "common_stowraapi/platform/file_source.h"

namespace stowra {

using ovrant::internet::FileSource;

namespace {

constexpr std::size_t kPiece = std::size_t{64} << 10;
constexpr std::size_t kBeginning = 2;

}  // namespace

bool ScanFile(const std::string& file, std::string_view text, FileScan& scan, std::string& why) {
  FileSource source(file);
  scan = FileScan();
  // The piece before leaves its end here, since the text may begin there.
  std::vector<char> bytes(text.size() + kPiece);
  std::size_t kept = 0;
  std::size_t count = 0;
  while (source.error() == 0 &&
         source.Read(reinterpret_cast<unsigned char*>(bytes.data()) + kept, kPiece, count) &&
         count > 0) {
    const auto end = bytes.begin() + static_cast<std::ptrdiff_t>(kept + count);
    scan.size += count;
    if (scan.beginning.size() < kBeginning) {
      scan.beginning.assign(bytes.begin(), std::min(end, bytes.begin() + kBeginning));
    }
    const std::string_view piece(bytes.data(), kept + count);
    scan.holds_text = scan.holds_text || piece.find(text) != std::string_view::npos;
    kept = std::min(kept + count, text.size() - 1);
    std::copy(end - static_cast<std::ptrdiff_t>(kept), end, bytes.begin());
  }
  if (source.error() != 0) why = std::generic_category().message(source.error());
  return source.error() == 0;
}

}  // namespace stowra

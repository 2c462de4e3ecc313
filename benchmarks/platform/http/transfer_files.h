// SPDX-License-Identifier: MIT
// The files that the transfer benchmarks fetch.

#ifndef BENCHMARKS_PLATFORM_HTTP_TRANSFER_FILES_H_
#define BENCHMARKS_PLATFORM_HTTP_TRANSFER_FILES_H_

#include <cstddef>
#include <string>

namespace stowra_bench {

inline constexpr std::size_t kSmallBody = 2000;
inline constexpr std::size_t kMediumBody = 200000;
inline constexpr std::size_t kLargeBody = 2000000;
inline constexpr std::size_t kHugeBody = std::size_t{1} << 30;

// The URL of a file of `size` bytes on this program's nginx.
std::string UrlOfFile(std::size_t size);

}  // namespace stowra_bench

#endif  // BENCHMARKS_PLATFORM_HTTP_TRANSFER_FILES_H_

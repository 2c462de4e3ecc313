// SPDX-License-Identifier: MIT
// How wide the output may be.

#ifndef HOST_TERMINAL_WIDTH_H_
#define HOST_TERMINAL_WIDTH_H_

#include <cstddef>
#include <cstdio>
#include <limits>

namespace stowra {

inline constexpr std::size_t kNoWidthLimit = std::numeric_limits<std::size_t>::max();

// The number in the environment variable COLUMNS. Without it the columns of the terminal behind
// `stream`. Without either `without_terminal`.
std::size_t WidthOf(std::FILE* stream, std::size_t without_terminal);

}  // namespace stowra

#endif  // HOST_TERMINAL_WIDTH_H_

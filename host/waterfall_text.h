// SPDX-License-Identifier: MIT
// Draws a waterfall.

#ifndef HOST_WATERFALL_TEXT_H_
#define HOST_WATERFALL_TEXT_H_

#include <cstddef>
#include <string>
#include <vector>

#include "host/waterfall.h"

namespace stowra {

// For a drawing that goes to no terminal.
inline constexpr std::size_t kUsualWidth = 80;

// A line for each request, `width` columns wide, but from 60 to 1000. Plain ASCII, or coloured
// blocks with `coloured`. Says so if there are no requests.
std::string ToText(const std::vector<RequestRow>& rows, std::size_t width, bool coloured);

// The same as an SVG document.
std::string ToSvg(const std::vector<RequestRow>& rows);

// A time in a fitting unit, such as "12.3 ms".
std::string FormatSeconds(double seconds);

}  // namespace stowra

#endif  // HOST_WATERFALL_TEXT_H_

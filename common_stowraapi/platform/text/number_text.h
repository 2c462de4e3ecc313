// SPDX-License-Identifier: MIT
// Reads decimal numbers, in any locale.

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_NUMBER_TEXT_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_NUMBER_TEXT_H_

#include <string_view>

namespace ovrant::utils {

// The whole text must be one decimal number. A sign, and ASCII white space around it, are allowed.
// Any other text, and a number that does not fit, gives 0.

int ReadInt(std::u16string_view text);

// Gives the nearest float. The number may have a point anywhere and an exponent.
float ReadFloat(std::u16string_view text);

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_NUMBER_TEXT_H_

// SPDX-License-Identifier: MIT
// PNG files.

#ifndef EMULATOR_PICTURE_PNG_H_
#define EMULATOR_PICTURE_PNG_H_

#include <string>
#include <string_view>

namespace stowra_emulator {

// `pixels` holds three bytes a pixel, red, green and blue, row by row: width * height * 3 of them.
std::string EncodePng(int width, int height, std::string_view pixels);

}  // namespace stowra_emulator

#endif  // EMULATOR_PICTURE_PNG_H_

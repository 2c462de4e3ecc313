// SPDX-License-Identifier: MIT
// Pictures of models.

#ifndef EMULATOR_PICTURE_PICTURE_H_
#define EMULATOR_PICTURE_PICTURE_H_

#include <string>
#include <string_view>

namespace stowra_emulator {

// A PNG file of this width and height (pixels, at least 16). `seed` decides the proportions and
// colours. It also picks the shape if `shape` is unknown.
std::string DrawPicture(const std::string& shape, std::string_view seed, int width, int height);

}  // namespace stowra_emulator

#endif  // EMULATOR_PICTURE_PICTURE_H_

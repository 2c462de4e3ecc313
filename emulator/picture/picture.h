// Pictures of models.

#ifndef EMULATOR_PICTURE_PICTURE_H_
#define EMULATOR_PICTURE_PICTURE_H_

#include <string>
#include <string_view>

namespace stowra_emulator {

// A PNG file of that width and height (pixels, at least 16). It shows `shape`, or any one if that
// is not known, in proportions and colours that follow from `seed`.
std::string DrawPicture(const std::string& shape, std::string_view seed, int width, int height);

}  // namespace stowra_emulator

#endif  // EMULATOR_PICTURE_PICTURE_H_

// SPDX-License-Identifier: MIT
// The picture sizes of every item.

#ifndef EMULATOR_CONTENT_PICTURE_SIZE_H_
#define EMULATOR_CONTENT_PICTURE_SIZE_H_

#include <string>
#include <vector>

namespace stowra_emulator {

struct PictureSize {
  const char* rtyp;
  int width;  // In pixels, as is the height.
  int height;
};

// First the small size for lists, then the large one.
const std::vector<PictureSize>& PictureSizes();

// Null if there is no such size.
const PictureSize* FindPictureSize(const std::string& rtyp);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_PICTURE_SIZE_H_

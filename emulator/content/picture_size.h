// The sizes of the pictures that there are of each item.

#ifndef EMULATOR_CONTENT_PICTURE_SIZE_H_
#define EMULATOR_CONTENT_PICTURE_SIZE_H_

#include <string>
#include <vector>

namespace stowra_emulator {

struct PictureSize {
  const char* rtyp;
  int width;  // Points, as is the height.
  int height;
};

// The small one for lists first, then the large one.
const std::vector<PictureSize>& PictureSizes();

// Null when there is none of that name.
const PictureSize* FindPictureSize(const std::string& rtyp);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_PICTURE_SIZE_H_

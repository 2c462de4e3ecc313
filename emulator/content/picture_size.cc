// SPDX-License-Identifier: MIT
#include "emulator/content/picture_size.h"

#include <algorithm>

namespace stowra_emulator {

const std::vector<PictureSize>& PictureSizes() {
  static const std::vector<PictureSize> sizes = {{"st", 256, 192}, {"lt", 640, 480}};
  return sizes;
}

const PictureSize* FindPictureSize(const std::string& rtyp) {
  const auto& sizes = PictureSizes();
  const auto found = std::find_if(sizes.begin(), sizes.end(),
                                  [&rtyp](const PictureSize& size) { return size.rtyp == rtyp; });
  return found == sizes.end() ? nullptr : &*found;
}

}  // namespace stowra_emulator

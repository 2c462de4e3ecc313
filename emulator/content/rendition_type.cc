// SPDX-License-Identifier: MIT
#include "emulator/content/rendition_type.h"

namespace stowra_emulator {

std::string RenditionOfType(std::string_view type) {
  if (type == kQmfType) return "s";
  if (type == kKmzType) return "k2";
  if (type == kZipType) return "z";
  return "o";
}

std::string ExtensionOfType(std::string_view type) {
  if (type == kQmfType) return "qmf";
  if (type == kKmzType) return "kmz";
  if (type == kZipType) return "zip";
  return "bin";
}

}  // namespace stowra_emulator

// SPDX-License-Identifier: MIT
// The content types of model files.

#ifndef EMULATOR_CONTENT_RENDITION_TYPE_H_
#define EMULATOR_CONTENT_RENDITION_TYPE_H_

#include <string>
#include <string_view>

namespace stowra_emulator {

constexpr const char* kQmfType = "application/vnd.brevix.qmf";
constexpr const char* kKmzType = "application/vnd.pellamy.kmz";
constexpr const char* kZipType = "application/zip";

// The rendition that a file of this type is offered as.
std::string RenditionOfType(std::string_view type);

// The file extension without the dot. "bin" for an unknown type.
std::string ExtensionOfType(std::string_view type);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_RENDITION_TYPE_H_

// SPDX-License-Identifier: MIT
// Made-up files for the seeded models.

#ifndef EMULATOR_CONTENT_MODEL_FILE_H_
#define EMULATOR_CONTENT_MODEL_FILE_H_

#include <string>

namespace stowra_emulator {

// 2 to 60 KB that contain every byte value. A model and a rendition always give the same bytes.
std::string MakeModelFile(const std::string& mid, const std::string& rtyp);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_MODEL_FILE_H_

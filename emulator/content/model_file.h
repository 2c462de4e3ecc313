// The files of models that nobody has uploaded.

#ifndef EMULATOR_CONTENT_MODEL_FILE_H_
#define EMULATOR_CONTENT_MODEL_FILE_H_

#include <string>

namespace stowra_emulator {

// 2 to 60 KB with every byte value among them, always the same for one model and rendition.
std::string MakeModelFile(const std::string& mid, const std::string& rtyp);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_MODEL_FILE_H_

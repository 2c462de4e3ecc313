// SPDX-License-Identifier: MIT
// A small response that grows when it is decoded.

#ifndef EMULATOR_GZIP_BOMB_H_
#define EMULATOR_GZIP_BOMB_H_

#include <string>

namespace stowra_emulator {

// One gzip member of about 1 MB that inflates to 1 GiB of spaces. The first call makes it, and it
// stays until the process ends. Safe from any thread.
const std::string& GzipBomb();

}  // namespace stowra_emulator

#endif  // EMULATOR_GZIP_BOMB_H_

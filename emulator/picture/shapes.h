// SPDX-License-Identifier: MIT
// The shapes in the pictures.

#ifndef EMULATOR_PICTURE_SHAPES_H_
#define EMULATOR_PICTURE_SHAPES_H_

#include <string>

#include "emulator/picture/mesh.h"
#include "emulator/random_stream.h"

namespace stowra_emulator {

// A chair, a table and so on. `random` gives the proportions and colours. It also picks the shape
// if `shape` is unknown.
Mesh MakeShape(const std::string& shape, RandomStream& random);

}  // namespace stowra_emulator

#endif  // EMULATOR_PICTURE_SHAPES_H_

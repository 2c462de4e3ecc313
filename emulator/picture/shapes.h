// What the pictures show.

#ifndef EMULATOR_PICTURE_SHAPES_H_
#define EMULATOR_PICTURE_SHAPES_H_

#include <string>

#include "emulator/picture/mesh.h"
#include "emulator/random_stream.h"

namespace stowra_emulator {

// A chair, a table and so on, in proportions and colours that `random` gives. A shape that is not
// known is one of the known ones, picked by `random`.
Mesh MakeShape(const std::string& shape, RandomStream& random);

}  // namespace stowra_emulator

#endif  // EMULATOR_PICTURE_SHAPES_H_

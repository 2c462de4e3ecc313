// SPDX-License-Identifier: MIT
// Points and faces in space.

#ifndef EMULATOR_PICTURE_GEOMETRY_H_
#define EMULATOR_PICTURE_GEOMETRY_H_

#include <vector>

namespace stowra_emulator {

// x goes right and to the front, y left and to the front, z up.
struct Point {
  double x = 0;
  double y = 0;
  double z = 0;
};

struct Colour {
  double red = 0;  // From 0 to 1, as are the others.
  double green = 0;
  double blue = 0;
};

// A flat convex polygon.
struct Face {
  std::vector<Point> corners;  // At least three, in order round it.
  Colour colour;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_PICTURE_GEOMETRY_H_

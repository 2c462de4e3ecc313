// SPDX-License-Identifier: MIT
// Bodies made of faces.

#ifndef EMULATOR_PICTURE_MESH_H_
#define EMULATOR_PICTURE_MESH_H_

#include <vector>

#include "emulator/picture/geometry.h"

namespace stowra_emulator {

class Mesh {
 public:
  // A box with these opposite corners. `low` has the smaller coordinates.
  void AddBox(Point low, Point high, Colour colour);

  // A round, upright body on its base's centre. A top radius of 0 makes a cone.
  void AddCone(Point base, double base_radius, double top_radius, double height, Colour colour);

  // A wheel with its axis along y, from `low_y` to `high_y`.
  void AddWheel(Point centre, double radius, double low_y, double high_y, Colour colour);

  // A roof with its ridge along x, on the rectangle between `low` and `high`. Both corners count at
  // `low`'s height.
  void AddRoof(Point low, Point high, double height, Colour colour, Colour gable);

  void AddBall(Point centre, double radius, Colour colour);

  // Turns everything about the z axis, by an angle in radians.
  void Turn(double angle);

  const std::vector<Face>& faces() const { return faces_; }

 private:
  void AddFace(std::vector<Point> corners, Colour colour) {
    faces_.push_back({std::move(corners), colour});
  }

  std::vector<Face> faces_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_PICTURE_MESH_H_

// SPDX-License-Identifier: MIT
#include "emulator/picture/shapes.h"

#include <algorithm>
#include <array>
#include <vector>

namespace stowra_emulator {
namespace {

constexpr Colour kDark = {0.22, 0.24, 0.28};
constexpr Colour kGlass = {0.66, 0.80, 0.88};
constexpr Colour kWood = {0.62, 0.44, 0.28};
constexpr Colour kLinen = {0.93, 0.91, 0.86};
constexpr Colour kShade = {0.98, 0.87, 0.56};

Colour PickColour(RandomStream& random) {
  constexpr std::array<Colour, 10> kColours = {{{0.80, 0.36, 0.25},
                                                {0.90, 0.64, 0.26},
                                                {0.36, 0.56, 0.42},
                                                {0.27, 0.49, 0.65},
                                                {0.50, 0.40, 0.62},
                                                {0.74, 0.58, 0.42},
                                                {0.36, 0.62, 0.64},
                                                {0.84, 0.52, 0.52},
                                                {0.55, 0.60, 0.66},
                                                {0.72, 0.68, 0.36}}};
  return kColours[random.Pick(kColours.size())];
}

// Legs in the corners of the rectangle from the origin to (width, depth).
void AddLegs(Mesh& mesh, double width, double depth, double height, double thickness,
             Colour colour) {
  for (const double x : {0.0, width - thickness}) {
    for (const double y : {0.0, depth - thickness}) {
      mesh.AddBox({x, y, 0}, {x + thickness, y + thickness, height}, colour);
    }
  }
}

Mesh MakeChair(RandomStream& random) {
  const double width = random.Between(4, 5.5);
  const double depth = random.Between(4, 5);
  const double seat = random.Between(4, 5);
  const double back = random.Between(4, 7);
  const Colour colour = PickColour(random);
  Mesh mesh;
  AddLegs(mesh, width, depth, seat, 0.5, kWood);
  mesh.AddBox({0, 0, seat}, {width, depth, seat + 0.7}, colour);
  mesh.AddBox({0, 0, seat + 0.7}, {0.5, 0.5, seat + back}, kWood);
  mesh.AddBox({0, depth - 0.5, seat + 0.7}, {0.5, depth, seat + back}, kWood);
  mesh.AddBox({0, 0, seat + back * 0.45}, {0.6, depth, seat + back}, colour);
  return mesh;
}

Mesh MakeTable(RandomStream& random) {
  const double width = random.Between(7, 11);
  const double depth = random.Between(5, 7);
  const double height = random.Between(3.5, 5.5);
  const Colour colour = PickColour(random);
  Mesh mesh;
  AddLegs(mesh, width, depth, height, 0.7, kWood);
  mesh.AddBox({-0.4, -0.4, height}, {width + 0.4, depth + 0.4, height + 0.6}, colour);
  mesh.AddCone({width * 0.35, depth * 0.6, height + 0.6}, 0.5, 0.8, 1.4, PickColour(random));
  mesh.AddCone({width * 0.7, depth * 0.35, height + 0.6}, 1.1, 1.3, 0.3, kLinen);
  return mesh;
}

Mesh MakeSofa(RandomStream& random) {
  const double width = random.Between(9, 13);
  const Colour colour = PickColour(random);
  const Colour cushion = PickColour(random);
  Mesh mesh;
  AddLegs(mesh, 5, width, 0.8, 0.6, kDark);
  mesh.AddBox({0, 0, 0.8}, {5, width, 2.6}, colour);
  mesh.AddBox({0, 0, 2.6}, {1.3, width, 5.2}, colour);
  mesh.AddBox({0, 0, 2.6}, {5, 1, 3.9}, colour);
  mesh.AddBox({0, width - 1, 2.6}, {5, width, 3.9}, colour);
  for (const double y : {1.2, width / 2 + 0.1}) {
    mesh.AddBox({1.4, y, 2.6}, {5, y + width / 2 - 1.3, 3.2}, cushion);
  }
  return mesh;
}

Mesh MakeBed(RandomStream& random) {
  const double width = random.Between(6, 8.5);
  const double length = random.Between(10, 11.5);
  const Colour colour = PickColour(random);
  Mesh mesh;
  mesh.AddBox({0, 0, 0}, {0.6, width, random.Between(4, 6)}, kWood);
  mesh.AddBox({0.6, 0, 0.5}, {length, width, 1.4}, kWood);
  mesh.AddBox({length - 0.5, 0, 0}, {length, width, 2.2}, kWood);
  mesh.AddBox({0.6, 0.2, 1.4}, {length - 0.5, width - 0.2, 2.4}, kLinen);
  mesh.AddBox({3.6, 0.1, 1.5}, {length - 0.5, width - 0.1, 2.6}, colour);
  for (const double y : {0.6, width / 2 + 0.3}) {
    mesh.AddBox({0.9, y, 2.4}, {2.9, y + width / 2 - 0.9, 3}, kLinen);
  }
  return mesh;
}

Mesh MakeShelf(RandomStream& random) {
  const double width = random.Between(5, 8);
  const int boards = 4 + static_cast<int>(random.Pick(3));
  const double height = boards * 2.2;
  const Colour colour = PickColour(random);
  Mesh mesh;
  mesh.AddBox({0, 0, 0}, {0.2, width, height}, colour);
  mesh.AddBox({0, -0.3, 0}, {2.4, 0, height}, colour);
  mesh.AddBox({0, width, 0}, {2.4, width + 0.3, height}, colour);
  for (int board = 0; board <= boards; ++board) {
    const double z = board * 2.2;
    mesh.AddBox({0.2, 0, z - (board == boards ? 0.3 : 0)}, {2.4, width, z + 0.3}, colour);
    double y = random.Between(0.1, 1);
    while (board < boards && y < width - 1) {
      const double thickness = random.Between(0.3, 0.6);
      mesh.AddBox({0.3, y, z + 0.3}, {2, y + thickness, z + random.Between(1.2, 1.8)},
                  PickColour(random));
      y += thickness + (random.Pick(4) == 0 ? 0.9 : 0.02);
    }
  }
  return mesh;
}

Mesh MakeLamp(RandomStream& random) {
  const double height = random.Between(6, 10);
  const double radius = random.Between(2, 3);
  const Colour colour = PickColour(random);
  Mesh mesh;
  mesh.AddCone({0, 0, 0}, 1.7, 1.5, 0.4, colour);
  mesh.AddCone({0, 0, 0.4}, 0.2, 0.2, height, colour);
  mesh.AddCone({0, 0, height}, radius, radius * random.Between(0.4, 0.8), 2.6, kShade);
  return mesh;
}

Mesh MakeHouse(RandomStream& random) {
  const double length = random.Between(9, 12);
  const double width = random.Between(7, 9);
  const double height = random.Between(4.5, 7);
  const double roof = random.Between(3, 5);
  const Colour walls = random.Pick(2) == 0 ? kLinen : PickColour(random);
  const Colour tiles = PickColour(random);
  Mesh mesh;
  mesh.AddBox({0, 0, 0}, {length, width, height}, walls);
  mesh.AddRoof({-0.6, -0.6, height}, {length + 0.6, width + 0.6, height}, roof, tiles, walls);
  mesh.AddBox({length * 0.2, width * 0.2, height},
              {length * 0.2 + 1.2, width * 0.2 + 1.2, height + roof + 1}, kDark);
  mesh.AddBox({length, width * 0.4, 0}, {length + 0.15, width * 0.4 + 1.8, 3.2}, kWood);
  for (double x = 1; x + 1.6 < length; x += 2.8) {
    mesh.AddBox({x, width, 1.6}, {x + 1.6, width + 0.12, 3.4}, kGlass);
  }
  return mesh;
}

Mesh MakeTower(RandomStream& random) {
  const double side = random.Between(5, 6.5);
  const int floors = 7 + static_cast<int>(random.Pick(5));
  const Colour colour = PickColour(random);
  Mesh mesh;
  mesh.AddBox({-1, -1, 0}, {side + 1, side + 1, 1.4}, kLinen);
  for (int floor = 0; floor < floors; ++floor) {
    const double z = 1.4 + floor * 1.7;
    mesh.AddBox({0, 0, z}, {side, side, z + 0.7}, colour);
    mesh.AddBox({0.15, 0.15, z + 0.7}, {side - 0.15, side - 0.15, z + 1.7}, kGlass);
  }
  const double top = 1.4 + floors * 1.7;
  mesh.AddBox({0, 0, top}, {side, side, top + 0.6}, colour);
  mesh.AddCone({side / 2, side / 2, top + 0.6}, 0.2, 0.05, random.Between(1, 4), kDark);
  return mesh;
}

Mesh MakeCar(RandomStream& random) {
  const double length = random.Between(9, 12);
  const double cabin = random.Between(4, 6.5);
  const Colour colour = PickColour(random);
  const double start = random.Between(1, 2.5);
  Mesh mesh;
  for (const double x : {2.0, length - 2}) {
    mesh.AddWheel({x, 0, 1.1}, 1.1, -0.15, 0.7, kDark);
    mesh.AddWheel({x, 0, 1.1}, 1.1, 4.3, 5.15, kDark);
    mesh.AddWheel({x, 0, 1.1}, 0.5, 5.15, 5.2, kLinen);
  }
  mesh.AddBox({0, 0, 0.9}, {length, 5, 2.7}, colour);
  mesh.AddBox({start, 0.3, 2.7}, {start + cabin, 4.7, 4.3}, kGlass);
  mesh.AddBox({start, 0.3, 4.3}, {start + cabin, 4.7, 4.6}, colour);
  mesh.AddBox({start + cabin / 2 - 0.2, 4.7, 2.7}, {start + cabin / 2 + 0.2, 4.75, 4.3}, colour);
  for (const double y : {0.4, 3.7}) {
    mesh.AddBox({length, y, 1.7}, {length + 0.1, y + 0.9, 2.3}, kShade);
  }
  return mesh;
}

Mesh MakeTree(RandomStream& random) {
  constexpr Colour kLeaf = {0.34, 0.56, 0.34};
  const double trunk = random.Between(2, 4);
  const double radius = random.Between(2.4, 3.4);
  Mesh mesh;
  mesh.AddCone({0, 0, 0}, 0.6, 0.45, trunk + 1, kWood);
  if (random.Pick(2) == 0) {
    const Colour leaf = {random.Between(0.30, 0.60), random.Between(0.50, 0.62), 0.30};
    mesh.AddBall({0, 0, trunk + radius * 0.8}, radius, leaf);
    mesh.AddBall({1.2, -1, trunk + radius * 1.3}, radius * 0.75, leaf);
    mesh.AddBall({-0.8, 1.4, trunk + radius * 0.9}, radius * 0.7, leaf);
    return mesh;
  }
  for (int layer = 0; layer < 3; ++layer) {
    const double share = 1 - 0.25 * layer;
    mesh.AddCone({0, 0, trunk + 2 * layer}, radius * share, 0, 3.4, kLeaf);
  }
  return mesh;
}

struct Maker {
  const char* shape;
  Mesh (*make)(RandomStream&);
};

constexpr std::array<Maker, 10> kMakers = {{{"chair", MakeChair},
                                            {"table", MakeTable},
                                            {"sofa", MakeSofa},
                                            {"bed", MakeBed},
                                            {"shelf", MakeShelf},
                                            {"lamp", MakeLamp},
                                            {"house", MakeHouse},
                                            {"tower", MakeTower},
                                            {"car", MakeCar},
                                            {"tree", MakeTree}}};

}  // namespace

Mesh MakeShape(const std::string& shape, RandomStream& random) {
  for (const Maker& maker : kMakers) {
    if (maker.shape == shape) return maker.make(random);
  }
  return kMakers[random.Pick(kMakers.size())].make(random);
}

}  // namespace stowra_emulator

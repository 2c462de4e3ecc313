// SPDX-License-Identifier: MIT
#include "emulator/picture/mesh.h"

#include <cmath>

namespace stowra_emulator {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kSides = 40;  // Of a circle.

// The angle of corner `n` of kSides.
double AngleOf(int n) { return 2 * kPi * n / kSides; }

Point OnCircle(Point centre, double radius, int n) {
  return {centre.x + radius * std::cos(AngleOf(n)), centre.y + radius * std::sin(AngleOf(n)),
          centre.z};
}

}  // namespace

void Mesh::AddBox(Point low, Point high, Colour colour) {
  const Point a = low;
  const Point b = high;
  AddFace({{a.x, a.y, a.z}, {b.x, a.y, a.z}, {b.x, b.y, a.z}, {a.x, b.y, a.z}}, colour);
  AddFace({{a.x, a.y, b.z}, {b.x, a.y, b.z}, {b.x, b.y, b.z}, {a.x, b.y, b.z}}, colour);
  AddFace({{a.x, a.y, a.z}, {b.x, a.y, a.z}, {b.x, a.y, b.z}, {a.x, a.y, b.z}}, colour);
  AddFace({{a.x, b.y, a.z}, {b.x, b.y, a.z}, {b.x, b.y, b.z}, {a.x, b.y, b.z}}, colour);
  AddFace({{a.x, a.y, a.z}, {a.x, b.y, a.z}, {a.x, b.y, b.z}, {a.x, a.y, b.z}}, colour);
  AddFace({{b.x, a.y, a.z}, {b.x, b.y, a.z}, {b.x, b.y, b.z}, {b.x, a.y, b.z}}, colour);
}

void Mesh::AddCone(Point base, double base_radius, double top_radius, double height,
                   Colour colour) {
  const Point top = {base.x, base.y, base.z + height};
  std::vector<Point> bottom_disc;
  std::vector<Point> top_disc;
  for (int n = 0; n < kSides; ++n) {
    bottom_disc.push_back(OnCircle(base, base_radius, n));
    top_disc.push_back(OnCircle(top, top_radius, n));
    AddFace({bottom_disc.back(), OnCircle(base, base_radius, n + 1),
             OnCircle(top, top_radius, n + 1), top_disc.back()},
            colour);
  }
  AddFace(std::move(bottom_disc), colour);
  if (top_radius > 0) AddFace(std::move(top_disc), colour);
}

void Mesh::AddWheel(Point centre, double radius, double low_y, double high_y, Colour colour) {
  const auto rim = [=](double y, int n) {
    return Point{centre.x + radius * std::cos(AngleOf(n)), y,
                 centre.z + radius * std::sin(AngleOf(n))};
  };
  std::vector<Point> first;
  std::vector<Point> last;
  for (int n = 0; n < kSides; ++n) {
    first.push_back(rim(low_y, n));
    last.push_back(rim(high_y, n));
    AddFace({first.back(), rim(low_y, n + 1), rim(high_y, n + 1), last.back()}, colour);
  }
  AddFace(std::move(first), colour);
  AddFace(std::move(last), colour);
}

void Mesh::AddRoof(Point low, Point high, double height, Colour colour, Colour gable) {
  const double y = (low.y + high.y) / 2;
  const double z = low.z;
  const Point ridge_start = {low.x, y, z + height};
  const Point ridge_end = {high.x, y, z + height};
  AddFace({{low.x, low.y, z}, {high.x, low.y, z}, ridge_end, ridge_start}, colour);
  AddFace({{low.x, high.y, z}, {high.x, high.y, z}, ridge_end, ridge_start}, colour);
  AddFace({{low.x, low.y, z}, {low.x, high.y, z}, ridge_start}, gable);
  AddFace({{high.x, low.y, z}, {high.x, high.y, z}, ridge_end}, gable);
}

void Mesh::AddBall(Point centre, double radius, Colour colour) {
  constexpr int kRings = kSides / 2;
  const auto ring = [=](int n) {
    const double angle = kPi * n / kRings - kPi / 2;
    return std::pair(radius * std::cos(angle), centre.z + radius * std::sin(angle));
  };
  for (int n = 0; n < kRings; ++n) {
    const auto [low_radius, low_z] = ring(n);
    const auto [high_radius, high_z] = ring(n + 1);
    for (int side = 0; side < kSides; ++side) {
      const Point low = {centre.x, centre.y, low_z};
      const Point high = {centre.x, centre.y, high_z};
      AddFace({OnCircle(low, low_radius, side), OnCircle(low, low_radius, side + 1),
               OnCircle(high, high_radius, side + 1), OnCircle(high, high_radius, side)},
              colour);
    }
  }
}

void Mesh::Turn(double angle) {
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  for (Face& face : faces_) {
    for (Point& corner : face.corners) {
      corner = {corner.x * cosine - corner.y * sine, corner.x * sine + corner.y * cosine, corner.z};
    }
  }
}

}  // namespace stowra_emulator

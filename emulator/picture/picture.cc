// SPDX-License-Identifier: MIT
#include "emulator/picture/picture.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "emulator/picture/canvas.h"
#include "emulator/picture/mesh.h"
#include "emulator/picture/png.h"
#include "emulator/picture/shapes.h"
#include "emulator/random_stream.h"

namespace stowra_emulator {
namespace {

constexpr Colour kBackgroundTop = {0.95, 0.96, 0.97};
constexpr Colour kBackgroundBottom = {0.86, 0.89, 0.91};
constexpr double kMargin = 0.08;  // Of the canvas, on each side.

// The direction to the light, with length 1.
constexpr Point kLight = {-0.20, 0.44, 0.875};

// The isometric view, along the line x = y = z.
Point Project(Point point) {
  const double kCosine = std::sqrt(3) / 2;
  return {(point.x - point.y) * kCosine, (point.x + point.y) / 2 - point.z,
          point.x + point.y + point.z};
}

// The point's shadow on the ground.
Point OnGround(Point point) {
  return {point.x - point.z * kLight.x / kLight.z, point.y - point.z * kLight.y / kLight.z, 0};
}

Point Minus(Point a, Point b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }

// The normal of length 1 on the side that the viewer sees. 0 for a face without area.
Point NormalOf(const Face& face) {
  // The corners at a cone's tip coincide, so some triples of corners span no plane.
  for (std::size_t i = 2; i < face.corners.size(); ++i) {
    const Point a = Minus(face.corners[1], face.corners[0]);
    const Point b = Minus(face.corners[i], face.corners[0]);
    Point normal = {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    double length = std::hypot(normal.x, normal.y, normal.z);
    if (length < 1e-9) continue;
    if (normal.x + normal.y + normal.z < 0) length = -length;
    return {normal.x / length, normal.y / length, normal.z / length};
  }
  return {};
}

Colour Lit(const Face& face) {
  constexpr double kAmbient = 0.66;
  const Point normal = NormalOf(face);
  const double towards = normal.x * kLight.x + normal.y * kLight.y + normal.z * kLight.z;
  const double light = kAmbient + 0.42 * std::max(0.0, towards);
  return {face.colour.red * light, face.colour.green * light, face.colour.blue * light};
}

// Maps points in space to the canvas. The mesh and its shadow are centred and fill it up to the
// margin.
class Frame {
 public:
  Frame(const Mesh& mesh, const Canvas& canvas) {
    for (const Face& face : mesh.faces()) {
      for (const Point& corner : face.corners) {
        Include(Project(corner));
        Include(Project(OnGround(corner)));
      }
    }
    const double width = canvas.sample_width();
    const double height = canvas.sample_height();
    scale_ = (1 - 2 * kMargin) * std::min(width / (high_.x - low_.x), height / (high_.y - low_.y));
    offset_x_ = width / 2 - scale_ * (low_.x + high_.x) / 2;
    offset_y_ = height / 2 - scale_ * (low_.y + high_.y) / 2;
  }

  Point Place(Point point) const {
    const Point projected = Project(point);
    return {offset_x_ + scale_ * projected.x, offset_y_ + scale_ * projected.y, projected.z};
  }

 private:
  static constexpr double kInfinity = std::numeric_limits<double>::infinity();

  void Include(Point point) {
    low_ = {std::min(low_.x, point.x), std::min(low_.y, point.y), 0};
    high_ = {std::max(high_.x, point.x), std::max(high_.y, point.y), 0};
  }

  Point low_ = {kInfinity, kInfinity, 0};
  Point high_ = {-kInfinity, -kInfinity, 0};
  double scale_ = 1;
  double offset_x_ = 0;
  double offset_y_ = 0;
};

void Draw(const Mesh& mesh, Canvas& canvas) {
  const Frame frame(mesh, canvas);
  std::vector<Point> placed;
  for (const Face& face : mesh.faces()) {
    placed.clear();
    for (const Point& corner : face.corners) placed.push_back(frame.Place(OnGround(corner)));
    canvas.Shade(placed);
  }
  for (const Face& face : mesh.faces()) {
    placed.clear();
    for (const Point& corner : face.corners) placed.push_back(frame.Place(corner));
    canvas.Fill(placed, Lit(face));
  }
}

}  // namespace

std::string DrawPicture(const std::string& shape, std::string_view seed, int width, int height) {
  RandomStream random(seed);
  Mesh mesh = MakeShape(shape, random);
  mesh.Turn(random.Between(-0.3, 0.3));
  Canvas canvas(width, height, kBackgroundTop, kBackgroundBottom);
  Draw(mesh, canvas);
  return EncodePng(width, height, canvas.Pixels());
}

}  // namespace stowra_emulator

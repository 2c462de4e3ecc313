// SPDX-License-Identifier: MIT
#include "emulator/picture/canvas.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace stowra_emulator {
namespace {

constexpr double kShadow = 0.84;  // The share of light that is left.

Colour Mix(Colour from, Colour to, double share) {
  return {from.red + (to.red - from.red) * share, from.green + (to.green - from.green) * share,
          from.blue + (to.blue - from.blue) * share};
}

// Twice the area of the triangle. The sign depends on the order of its corners.
double Cross(Point a, Point b, Point c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// The range of samples from `low` to `high` in a row or column of `size` samples.
int FirstSample(double low, int size) {
  return static_cast<int>(std::clamp(std::floor(low), 0.0, static_cast<double>(size)));
}
int EndSample(double high, int size) {
  return static_cast<int>(std::clamp(std::ceil(high) + 1, 0.0, static_cast<double>(size)));
}

char ToByte(double light) {
  return static_cast<char>(
      static_cast<unsigned char>(std::lround(std::clamp(light, 0.0, 1.0) * 255)));
}

}  // namespace

Canvas::Canvas(int width, int height, Colour top, Colour bottom)
    : width_(width * kSamplesAcross), height_(height * kSamplesAcross) {
  constexpr double kFarAway = -std::numeric_limits<double>::infinity();
  samples_.reserve(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
  for (int y = 0; y < height_; ++y) {
    const Colour colour = Mix(top, bottom, static_cast<double>(y) / height_);
    samples_.insert(samples_.end(), static_cast<std::size_t>(width_), {colour, kFarAway});
  }
}

template <typename Paint>
void Canvas::ForEachSampleOfTriangle(Point a, Point b, Point c, Paint paint) {
  const double area = Cross(a, b, c);
  if (area == 0) return;
  const int end_x = EndSample(std::max({a.x, b.x, c.x}), width_);
  const int end_y = EndSample(std::max({a.y, b.y, c.y}), height_);
  const int first_x = FirstSample(std::min({a.x, b.x, c.x}), width_);
  for (int y = FirstSample(std::min({a.y, b.y, c.y}), height_); y < end_y; ++y) {
    for (int x = first_x; x < end_x; ++x) {
      const Point centre = {x + 0.5, y + 0.5, 0};
      const double of_a = Cross(centre, b, c) / area;
      const double of_b = Cross(a, centre, c) / area;
      const double of_c = 1 - of_a - of_b;
      if (of_a < 0 || of_b < 0 || of_c < 0) continue;
      paint(At(x, y), of_a * a.z + of_b * b.z + of_c * c.z);
    }
  }
}

template <typename Paint>
void Canvas::ForEachSample(const std::vector<Point>& corners, Paint paint) {
  for (std::size_t i = 2; i < corners.size(); ++i) {
    ForEachSampleOfTriangle(corners[0], corners[i - 1], corners[i], paint);
  }
}

void Canvas::Fill(const std::vector<Point>& corners, Colour colour) {
  ForEachSample(corners, [colour](Sample& sample, double z) {
    if (z <= sample.z) return;
    sample.z = z;
    sample.colour = colour;
  });
}

void Canvas::Shade(const std::vector<Point>& corners) {
  ForEachSample(corners, [](Sample& sample, double) {
    if (sample.is_shaded) return;
    sample.is_shaded = true;
    sample.colour = Mix({0, 0, 0}, sample.colour, kShadow);
  });
}

std::string Canvas::Pixels() const {
  constexpr double kSamples = kSamplesAcross * kSamplesAcross;
  std::string pixels;
  for (int top = 0; top < height_; top += kSamplesAcross) {
    for (int left = 0; left < width_; left += kSamplesAcross) {
      Colour sum;
      for (int y = top; y < top + kSamplesAcross; ++y) {
        const auto row = static_cast<std::size_t>(y) * static_cast<std::size_t>(width_);
        for (int x = left; x < left + kSamplesAcross; ++x) {
          const Colour& colour = samples_[row + static_cast<std::size_t>(x)].colour;
          sum = {sum.red + colour.red, sum.green + colour.green, sum.blue + colour.blue};
        }
      }
      pixels +=
          {ToByte(sum.red / kSamples), ToByte(sum.green / kSamples), ToByte(sum.blue / kSamples)};
    }
  }
  return pixels;
}

}  // namespace stowra_emulator

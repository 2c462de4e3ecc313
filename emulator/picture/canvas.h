// SPDX-License-Identifier: MIT
// A canvas to draw faces on.

#ifndef EMULATOR_PICTURE_CANVAS_H_
#define EMULATOR_PICTURE_CANVAS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "emulator/picture/geometry.h"

namespace stowra_emulator {

// In points on the canvas, x goes right and y goes down, both in samples. Nearer points have a
// larger z. Each pixel averages a square of samples, so edges come out smooth.
class Canvas {
 public:
  static constexpr int kSamplesAcross = 3;

  // Starts with a gradient from `top` to `bottom`. Width and height are in pixels.
  Canvas(int width, int height, Colour top, Colour bottom);

  int sample_width() const { return width_; }
  int sample_height() const { return height_; }

  // Fills a convex polygon where nothing nearer has been drawn.
  void Fill(const std::vector<Point>& corners, Colour colour);

  // Darkens the samples that a convex polygon covers. Each sample is darkened at most once.
  void Shade(const std::vector<Point>& corners);

  // Three bytes a pixel, red, green and blue, row by row.
  std::string Pixels() const;

 private:
  struct Sample {
    Colour colour;
    double z;
    bool is_shaded = false;
  };

  template <typename Paint>
  void ForEachSample(const std::vector<Point>& corners, Paint paint);

  template <typename Paint>
  void ForEachSampleOfTriangle(Point a, Point b, Point c, Paint paint);

  Sample& At(int x, int y) {
    return samples_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                    static_cast<std::size_t>(x)];
  }

  int width_;
  int height_;
  std::vector<Sample> samples_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_PICTURE_CANVAS_H_

// A small canvas for flat drawings with smooth edges, and the bitmap file that becomes of it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pictures {

struct Color {
  double red = 0;  // 0 to 255
  double green = 0;
  double blue = 0;
};

struct Point {
  double x = 0;
  double y = 0;
};

// Shapes are told by the distance of a point to their edge, negative inside; whoever draws scales nothing by hand: all
// lengths are in the units of a drawing for 96 dots per inch.
class Canvas {
 public:
  Canvas(int width, int height, double scale);

  // From `top` to `bottom` in steps that a palette can hold.
  void gradient(Color top, Color bottom, int steps);
  // From left to right.
  void sideGradient(Color left, Color right, int steps);
  void disc(Point centre, double radius, Color color, double opacity = 1);
  void ring(Point centre, double radius, double thickness, Color color, double opacity = 1);
  // The part of a ring whose direction from the centre is within `spread` radians of `direction` (0 is to the right, a
  // quarter turn is down).
  void arc(Point centre, double radius, double thickness, double direction, double spread, Color color);
  void line(Point from, Point to, double thickness, Color color, double opacity = 1);
  void box(Point corner, Point size, double radius, Color color, double opacity = 1);
  void polygon(const std::vector<Point>& points, Color color, double opacity = 1);

  // A bitmap file of 256 colours, packed.
  std::string bitmapFile() const;

 private:
  template <class Distance>
  void fill(Distance&& distance, Color color, double opacity);
  Color& at(int x, int y) {
    return pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)];
  }

  int width_;
  int height_;
  double scale_;
  std::vector<Color> pixels_;
};

}  // namespace pictures

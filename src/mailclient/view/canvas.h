// A small painter for icons: filled shapes with smooth edges, at any size. Icons are drawn from shapes, so that they
// are sharp at every resolution of the screen.
#pragma once

#include <cstdint>
#include <vector>

namespace mailclient {

struct Point {
  double x;
  double y;
};

struct Color {
  std::uint8_t red;
  std::uint8_t green;
  std::uint8_t blue;
  std::uint8_t alpha = 255;
};

class Canvas {
 public:
  // A square of `size` pixels, transparent; shapes are given on a grid of `grid` units.
  explicit Canvas(int size, double grid = 16);

  void polygon(const std::vector<Point>& corners, Color color);
  void rectangle(double left, double top, double width, double height, Color color, double radius = 0);
  void ellipse(Point center, double radiusX, double radiusY, Color color);
  void line(const std::vector<Point>& points, double width, Color color);

  int size() const { return size_; }
  // From the top left, row by row: 0xAARRGGBB, the colours multiplied by alpha.
  const std::vector<std::uint32_t>& pixels() const { return pixels_; }

 private:
  void blend(std::size_t pixel, Color color, int covered);

  int size_;
  double scale_;
  std::vector<std::uint32_t> pixels_;
};

}  // namespace mailclient

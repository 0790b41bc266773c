#include "mailclient/view/canvas.h"

#include <algorithm>
#include <cmath>

namespace mailclient {
namespace {

constexpr int samples = 4;  // in each direction

// Even-odd: how often a ray to the right crosses the outline.
bool isInside(const std::vector<Point>& corners, double x, double y) {
  bool inside = false;
  for (std::size_t i = 0, j = corners.size() - 1; i < corners.size(); j = i++) {
    const Point a = corners[i];
    const Point b = corners[j];
    if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x) inside = !inside;
  }
  return inside;
}

void appendArc(std::vector<Point>& to, Point center, double radiusX, double radiusY, double from, double span) {
  constexpr int steps = 12;
  for (int i = 0; i <= steps; ++i) {
    const double angle = from + span * i / steps;
    to.push_back({center.x + radiusX * std::cos(angle), center.y + radiusY * std::sin(angle)});
  }
}

constexpr double pi = 3.14159265358979323846;

}  // namespace

Canvas::Canvas(int size, double grid)
    : size_(size), scale_(size / grid), pixels_(static_cast<std::size_t>(size) * static_cast<std::size_t>(size)) {}

void Canvas::blend(std::size_t pixel, Color color, int covered) {
  const double alpha = color.alpha / 255.0 * covered / (samples * samples);
  const std::uint32_t old = pixels_[pixel];
  const auto mix = [&](int shift, double added) {
    const double value = added + ((old >> shift) & 255u) * (1 - alpha);
    return static_cast<std::uint32_t>(value + 0.5) << shift;
  };
  pixels_[pixel] =
      mix(24, alpha * 255) | mix(16, alpha * color.red) | mix(8, alpha * color.green) | mix(0, alpha * color.blue);
}

void Canvas::polygon(const std::vector<Point>& corners, Color color) {
  if (corners.size() < 3) return;
  std::vector<Point> scaled(corners.size());
  std::transform(corners.begin(), corners.end(), scaled.begin(), [&](Point p) {
    return Point{p.x * scale_, p.y * scale_};
  });
  const auto [left, right] =
      std::minmax_element(scaled.begin(), scaled.end(), [](Point a, Point b) { return a.x < b.x; });
  const auto [top, bottom] =
      std::minmax_element(scaled.begin(), scaled.end(), [](Point a, Point b) { return a.y < b.y; });
  const auto within = [&](double v) { return std::clamp(static_cast<int>(std::floor(v)), 0, size_); };
  for (int y = within(top->y); y < std::min(within(bottom->y) + 1, size_); ++y)
    for (int x = within(left->x); x < std::min(within(right->x) + 1, size_); ++x) {
      int covered = 0;
      for (int s = 0; s < samples * samples; ++s)
        if (isInside(scaled, x + (s % samples + 0.5) / samples, y + (s / samples + 0.5) / samples)) ++covered;
      if (covered) blend(static_cast<std::size_t>(y * size_ + x), color, covered);
    }
}

void Canvas::rectangle(double left, double top, double width, double height, Color color, double radius) {
  const double right = left + width;
  const double bottom = top + height;
  if (radius <= 0) {
    polygon({{left, top}, {right, top}, {right, bottom}, {left, bottom}}, color);
    return;
  }
  std::vector<Point> outline;
  appendArc(outline, {right - radius, top + radius}, radius, radius, -pi / 2, pi / 2);
  appendArc(outline, {right - radius, bottom - radius}, radius, radius, 0, pi / 2);
  appendArc(outline, {left + radius, bottom - radius}, radius, radius, pi / 2, pi / 2);
  appendArc(outline, {left + radius, top + radius}, radius, radius, pi, pi / 2);
  polygon(outline, color);
}

void Canvas::ellipse(Point center, double radiusX, double radiusY, Color color) {
  std::vector<Point> outline;
  appendArc(outline, center, radiusX, radiusY, 0, pi);
  appendArc(outline, center, radiusX, radiusY, pi, pi);
  polygon(outline, color);
}

// Each stretch is a bar, and each corner is round.
void Canvas::line(const std::vector<Point>& points, double width, Color color) {
  for (std::size_t i = 0; i + 1 < points.size(); ++i) {
    const Point a = points[i];
    const Point b = points[i + 1];
    const double length = std::hypot(b.x - a.x, b.y - a.y);
    if (length == 0) continue;
    const double dx = (b.y - a.y) / length * width / 2;
    const double dy = (a.x - b.x) / length * width / 2;
    polygon({{a.x + dx, a.y + dy}, {b.x + dx, b.y + dy}, {b.x - dx, b.y - dy}, {a.x - dx, a.y - dy}}, color);
    if (i > 0) ellipse(a, width / 2, width / 2, color);
  }
}

}  // namespace mailclient

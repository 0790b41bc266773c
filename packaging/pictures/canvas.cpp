#include "canvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>

namespace pictures {
namespace {

double length(Point p) { return std::hypot(p.x, p.y); }

Color mixed(const Color& from, const Color& to, double part) {
  return {from.red + (to.red - from.red) * part, from.green + (to.green - from.green) * part,
          from.blue + (to.blue - from.blue) * part};
}

double stepped(double part, int steps) { return std::min(std::floor(part * steps), steps - 1.0) / (steps - 1); }

double distanceToLine(Point p, Point a, Point b) {
  const Point d{b.x - a.x, b.y - a.y};
  const double t = std::clamp(((p.x - a.x) * d.x + (p.y - a.y) * d.y) / (d.x * d.x + d.y * d.y), 0.0, 1.0);
  return length({p.x - a.x - t * d.x, p.y - a.y - t * d.y});
}

// Negative inside.
double distanceToPolygon(Point p, const std::vector<Point>& points) {
  double nearest = 1e9;
  bool inside = false;
  for (std::size_t i = 0, j = points.size() - 1; i < points.size(); j = i++) {
    const Point a = points[i];
    const Point b = points[j];
    nearest = std::min(nearest, distanceToLine(p, a, b));
    if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) inside = !inside;
  }
  return inside ? -nearest : nearest;
}

// Colours as a palette holds them: 0x00RRGGBB.
std::uint32_t packed(const Color& c) {
  const auto channel = [](double value) {
    return static_cast<std::uint32_t>(std::clamp(std::lround(value), 0L, 255L));
  };
  return channel(c.red) << 16 | channel(c.green) << 8 | channel(c.blue);
}

int difference(std::uint32_t a, std::uint32_t b) {
  int sum = 0;
  for (unsigned shift = 0; shift < 24; shift += 8) {
    const int d = static_cast<int>(a >> shift & 0xFF) - static_cast<int>(b >> shift & 0xFF);
    sum += d * d;
  }
  return sum;
}

// The 256 most frequent colours; the others, which smooth an edge here and there, take the nearest.
class Palette {
 public:
  explicit Palette(const std::vector<std::uint32_t>& pixels) {
    std::map<std::uint32_t, int> counts;
    for (const std::uint32_t pixel : pixels) ++counts[pixel];
    std::vector<std::pair<int, std::uint32_t>> order;
    for (const auto& [color, count] : counts) order.emplace_back(-count, color);
    std::sort(order.begin(), order.end());
    for (const auto& [count, color] : order)
      if (colors.size() < 256) colors.push_back(color);
  }
  std::uint8_t indexOf(std::uint32_t color) {
    const auto known = known_.find(color);
    if (known != known_.end()) return known->second;
    const auto best = std::min_element(colors.begin(), colors.end(), [&](std::uint32_t a, std::uint32_t b) {
      return difference(a, color) < difference(b, color);
    });
    return known_[color] = static_cast<std::uint8_t>(best - colors.begin());
  }
  std::vector<std::uint32_t> colors;

 private:
  std::map<std::uint32_t, std::uint8_t> known_;
};

void append(std::string& to, std::uint32_t number, int bytes) {
  for (int i = 0; i < bytes; ++i) to += static_cast<char>(number >> 8 * i & 0xFF);
}

std::size_t runAt(const std::vector<std::uint8_t>& row, std::size_t at) {
  std::size_t run = 1;
  while (at + run < row.size() && run < 255 && row[at + run] == row[at]) ++run;
  return run;
}

// One row in the run-length code of 8-bit bitmaps (BI_RLE8).
void appendRow(std::string& to, const std::vector<std::uint8_t>& row) {
  for (std::size_t at = 0; at < row.size();) {
    std::size_t literal = 0;
    while (at + literal < row.size() && literal < 255 && runAt(row, at + literal) < 4)
      literal += std::min(runAt(row, at + literal), 255 - literal);
    if (literal >= 3) {
      to += '\0';
      to += static_cast<char>(literal);
      for (std::size_t i = 0; i < literal; ++i) to += static_cast<char>(row[at + i]);
      if (literal % 2) to += '\0';
      at += literal;
      continue;
    }
    const std::size_t run = runAt(row, at);
    to += static_cast<char>(run);
    to += static_cast<char>(row[at]);
    at += run;
  }
  to.append(2, '\0');
}

}  // namespace

Canvas::Canvas(int width, int height, double scale)
    : width_(static_cast<int>(std::lround(width * scale))),
      height_(static_cast<int>(std::lround(height * scale))),
      scale_(scale),
      pixels_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_)) {}

template <class Distance>
void Canvas::fill(Distance&& distance, Color color, double opacity) {
  for (int y = 0; y < height_; ++y) {
    for (int x = 0; x < width_; ++x) {
      const Point p{(x + 0.5) / scale_, (y + 0.5) / scale_};
      const double cover = std::clamp(0.5 - distance(p) * scale_, 0.0, 1.0) * opacity;
      if (cover > 0) at(x, y) = mixed(at(x, y), color, cover);
    }
  }
}

void Canvas::gradient(Color top, Color bottom, int steps) {
  for (int y = 0; y < height_; ++y)
    for (int x = 0; x < width_; ++x) at(x, y) = mixed(top, bottom, stepped((y + 0.5) / height_, steps));
}

void Canvas::sideGradient(Color left, Color right, int steps) {
  for (int y = 0; y < height_; ++y)
    for (int x = 0; x < width_; ++x) at(x, y) = mixed(left, right, stepped((x + 0.5) / width_, steps));
}

void Canvas::disc(Point centre, double radius, Color color, double opacity) {
  fill([&](Point p) { return length({p.x - centre.x, p.y - centre.y}) - radius; }, color, opacity);
}

void Canvas::ring(Point centre, double radius, double thickness, Color color, double opacity) {
  fill(
      [&](Point p) {
        return std::abs(length({p.x - centre.x, p.y - centre.y}) - radius) - thickness / 2;
      },
      color, opacity);
}

void Canvas::arc(Point centre, double radius, double thickness, double direction, double spread, Color color) {
  const auto end = [&](double side) {
    return Point{centre.x + radius * std::cos(direction + side * spread),
                 centre.y + radius * std::sin(direction + side * spread)};
  };
  fill(
      [&](Point p) {
        const Point d{p.x - centre.x, p.y - centre.y};
        const double turn = std::remainder(std::atan2(d.y, d.x) - direction, 2 * std::numbers::pi);
        if (std::abs(turn) <= spread) return std::abs(length(d) - radius) - thickness / 2;
        const Point tip = end(turn > 0 ? 1 : -1);
        return length({p.x - tip.x, p.y - tip.y}) - thickness / 2;
      },
      color, 1);
}

void Canvas::line(Point from, Point to, double thickness, Color color, double opacity) {
  fill([&](Point p) { return distanceToLine(p, from, to) - thickness / 2; }, color, opacity);
}

void Canvas::box(Point corner, Point size, double radius, Color color, double opacity) {
  const Point half{size.x / 2, size.y / 2};
  const Point centre{corner.x + half.x, corner.y + half.y};
  fill(
      [&](Point p) {
        const Point q{std::abs(p.x - centre.x) - half.x + radius, std::abs(p.y - centre.y) - half.y + radius};
        return length({std::max(q.x, 0.0), std::max(q.y, 0.0)}) + std::min(std::max(q.x, q.y), 0.0) - radius;
      },
      color, opacity);
}

void Canvas::polygon(const std::vector<Point>& points, Color color, double opacity) {
  fill([&](Point p) { return distanceToPolygon(p, points); }, color, opacity);
}

std::string Canvas::bitmapFile() const {
  std::vector<std::uint32_t> colors;
  std::transform(pixels_.begin(), pixels_.end(), std::back_inserter(colors), packed);
  Palette palette(colors);

  std::string bits;
  for (int y = height_ - 1; y >= 0; --y) {  // from the bottom
    const auto begin = colors.begin() + static_cast<std::ptrdiff_t>(y) * width_;
    std::vector<std::uint8_t> row;
    std::transform(begin, begin + width_, std::back_inserter(row), [&](std::uint32_t c) { return palette.indexOf(c); });
    appendRow(bits, row);
  }
  bits += std::string("\0\1", 2);  // end of the bitmap

  constexpr std::uint32_t fileHeader = 14, infoHeader = 40, rle8 = 1;
  const std::uint32_t offset = fileHeader + infoHeader + static_cast<std::uint32_t>(palette.colors.size()) * 4;
  const auto size = static_cast<std::uint32_t>(bits.size());
  std::string file = "BM";
  append(file, offset + size, 4);
  append(file, 0, 4);
  append(file, offset, 4);
  append(file, infoHeader, 4);
  append(file, static_cast<std::uint32_t>(width_), 4);
  append(file, static_cast<std::uint32_t>(height_), 4);
  append(file, 1, 2);
  append(file, 8, 2);
  append(file, rle8, 4);
  append(file, size, 4);
  append(file, 0, 8);  // resolution
  append(file, static_cast<std::uint32_t>(palette.colors.size()), 4);
  append(file, 0, 4);
  for (const std::uint32_t color : palette.colors) append(file, color, 4);  // blue first
  return file + bits;
}

}  // namespace pictures

// draw_pictures FOLDER: draws the pictures of the wizard and the banner of its forms, each for 96 and 144 dots per
// inch.

#include <cstdio>
#include <fstream>
#include <numbers>
#include <string>

#include "canvas.h"

namespace {

using pictures::Canvas;
using pictures::Color;
using pictures::Point;

constexpr double quarterTurn = std::numbers::pi / 2;

constexpr Color white{255, 255, 255};
constexpr Color night{16, 52, 92};
constexpr Color sea{38, 122, 158};
constexpr Color ink{13, 40, 70};
constexpr Color sky{214, 236, 245};
constexpr Color sun{247, 181, 56};
constexpr Color leaf{118, 190, 92};
constexpr Color grey{205, 214, 222};
constexpr Color slate{90, 108, 126};

void background(Canvas& c) {
  c.gradient(night, sea, 40);
  c.disc({66, 250}, 92, white, 0.06);
  c.disc({118, 30}, 44, white, 0.05);
  c.disc({10, 96}, 30, white, 0.04);
}

void phone(Canvas& c, Point at, double size) {
  const auto p = [&](double x, double y) { return Point{at.x + x * size, at.y + y * size}; };
  const auto s = [&](double x, double y) { return Point{x * size, y * size}; };
  c.box(p(-18, -44), s(8, 22), 4 * size, ink);   // aerial
  c.box(p(-22, -30), s(44, 84), 9 * size, ink);  // body
  c.box(p(-19, -27), s(38, 78), 7 * size, slate);
  c.box(p(-15, -20), s(30, 26), 2 * size, sky);  // screen
  c.line(p(-10, -12), p(9, -12), 2.4 * size, sea);
  c.line(p(-10, -5), p(4, -5), 2.4 * size, sea);
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 3; ++column)
      c.box(p(-14.5 + column * 10.5, 12 + row * 9), s(8, 5.5), 2 * size, row == 3 && column == 2 ? leaf : grey);
}

void bubble(Canvas& c, Point corner, Point size, Color color) {
  c.box(corner, size, 9, color);
  c.polygon({{corner.x + 14, corner.y + size.y - 4},
             {corner.x + 32, corner.y + size.y - 4},
             {corner.x + 10, corner.y + size.y + 13}},
            color);
}

void envelope(Canvas& c, Point corner, Point size, Color paper, Color fold) {
  c.box(corner, size, 4, paper);
  const Point middle{corner.x + size.x / 2, corner.y + size.y * 0.6};
  c.line({corner.x + 4, corner.y + 4}, middle, 2.6, fold);
  c.line({corner.x + size.x - 4, corner.y + 4}, middle, 2.6, fold);
}

void arrow(Canvas& c, Point from, Point to, Color color) {
  const double way = to.y > from.y ? 1 : -1;
  c.line(from, {to.x, to.y - 8 * way}, 8, color);
  c.polygon({{to.x - 13, to.y - 12 * way}, {to.x + 13, to.y - 12 * way}, {to.x, to.y + 5 * way}}, color);
}

void waves(Canvas& c, Point centre, double direction, Color color, double first, double step, int count) {
  for (int i = 0; i < count; ++i) c.arc(centre, first + i * step, 4, direction, 0.62, color);
}

void welcome(Canvas& c) {
  background(c);
  bubble(c, {22, 40}, {76, 46}, white);
  for (int i = 0; i < 3; ++i) c.disc({42.0 + 18 * i, 63}, 5, i == 2 ? sun : sea);
  phone(c, {74, 156}, 1.15);
}

void serviceCentre(Canvas& c) {
  background(c);
  const Point top{66, 88};
  waves(c, top, 0, white, 17, 13, 3);
  waves(c, top, 2 * quarterTurn, white, 17, 13, 3);
  c.line(top, {38, 204}, 5, grey);
  c.line(top, {94, 204}, 5, grey);
  const double heights[] = {120, 148, 176, 202};
  for (int i = 0; i < 3; ++i) {
    const double upper = 28 * (heights[i] - top.y) / (204 - top.y);
    const double lower = 28 * (heights[i + 1] - top.y) / (204 - top.y);
    c.line({66 - upper, heights[i]}, {66 + upper, heights[i]}, 3, grey);
    c.line({66 - upper, heights[i]}, {66 + lower, heights[i + 1]}, 3, grey);
    c.line({66 + upper, heights[i]}, {66 - lower, heights[i + 1]}, 3, grey);
  }
  c.line({24, 206}, {108, 206}, 6, ink);
  c.disc(top, 7, sun);
}

void sendAndReceive(Canvas& c) {
  background(c);
  envelope(c, {24, 88}, {84, 58}, white, slate);
  arrow(c, {47, 72}, {47, 34}, sun);
  arrow(c, {85, 34}, {85, 72}, leaf);
  c.ring({66, 186}, 20, 5, white);  // the clock of the polling
  c.line({66, 186}, {66, 174}, 4, white);
  c.line({66, 186}, {75, 191}, 4, white);
}

void userInformation(Canvas& c) {
  background(c);
  c.box({22, 62}, {88, 116}, 8, white);
  c.box({22, 62}, {88, 22}, 8, sun);
  c.box({22, 74}, {88, 12}, 0, sun);
  c.box({52, 67}, {28, 6}, 3, night);  // where the card hangs
  c.disc({66, 108}, 15, sea);
  c.box({42, 126}, {48, 26}, 13, sea);
  c.box({42, 140}, {48, 14}, 0, white);
  c.line({38, 152}, {94, 152}, 4, grey);
  c.line({38, 164}, {76, 164}, 4, grey);
}

void banner(Canvas& c) {
  c.sideGradient(white, {176, 216, 232}, 20);
  envelope(c, {46, 13}, {40, 27}, white, sea);
  c.line({46, 13}, {86, 13}, 1.6, sea);
  c.line({46, 40}, {86, 40}, 1.6, sea);
  c.line({46, 13}, {46, 40}, 1.6, sea);
  c.line({86, 13}, {86, 40}, 1.6, sea);
  waves(c, {86, 26}, 0, night, 9, 9, 2);
}

struct Drawing {
  const char* name;
  int width;
  int height;
  void (*draw)(Canvas&);
};

// In dots at 96 per inch.
constexpr Drawing drawings[] = {
    {"wizard1", 132, 234, welcome},         {"wizard2", 132, 234, serviceCentre}, {"wizard3", 132, 234, sendAndReceive},
    {"wizard4", 132, 234, userInformation}, {"banner", 120, 52, banner},
};

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("usage: draw_pictures FOLDER\n", stderr);
    return 2;
  }
  for (const Drawing& drawing : drawings) {
    for (const int resolution : {96, 144}) {
      Canvas canvas(drawing.width, drawing.height, resolution / 96.0);
      drawing.draw(canvas);
      const std::string path =
          std::string(arguments[1]) + "/" + drawing.name + "_" + std::to_string(resolution) + ".bmp";
      std::ofstream file(path, std::ios::binary);
      file << canvas.bitmapFile();
      if (!file.flush()) {
        std::fprintf(stderr, "draw_pictures: cannot write %s\n", path.c_str());
        return 1;
      }
    }
  }
  return 0;
}

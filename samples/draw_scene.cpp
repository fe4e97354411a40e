#include "samples/draw_scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include <rasterkit/graphics/canvas.h>

namespace rasterkit::samples {
namespace {

struct Color {
  double r = 0, g = 0, b = 0;
};

Color Mix(const Color& from, const Color& to, double share) {
  share = std::clamp(share, 0.0, 1.0);
  return {from.r + (to.r - from.r) * share, from.g + (to.g - from.g) * share,
          from.b + (to.b - from.b) * share};
}

/// Height of a hill line at `x`, both in parts of the picture's height, from the top.
double HillLine(double x, double base, double swing, double phase) {
  return base + swing * std::sin(x * 4.1 + phase) + swing * 0.35 * std::sin(x * 11.3 + phase * 2);
}

/// The landscape at a point in units of the picture's height: x from 0 to the aspect ratio, y from
/// 0 (top) to 1.
Color Landscape(double x, double y) {
  Color color = Mix({92, 148, 216}, {226, 234, 240}, y * 1.6);
  const double sun = std::hypot(x - 1.22, y - 0.17);
  color = Mix({255, 246, 190}, color, (sun - 0.055) * 60);
  color = Mix(Mix(color, {255, 240, 180}, 0.35), color, sun * 4);
  const double far = HillLine(x, 0.52, 0.05, 0.4), near = HillLine(x, 0.66, 0.035, 2.1);
  if (y > far) color = Mix({104, 132, 150}, {128, 156, 140}, (y - far) * 5);
  if (y > near)
    color = Mix({96, 140, 72}, {58, 96, 44}, (y - near) * 2.6 + 0.08 * std::sin(x * 37 + y * 23));
  return color;
}

void PaintLandscape(TBitmap& bitmap) {
  for (int y = 0; y < bitmap.Height(); ++y) {
    auto* row = reinterpret_cast<RGBrec*>(bitmap.ScanLine(y));
    for (int x = 0; x < bitmap.Width(); ++x) {
      const double scale = 1.0 / bitmap.Height();
      const Color color = Landscape((x + 0.5) * scale, (y + 0.5) * scale);
      row[x] = {static_cast<uint8_t>(color.b + 0.5), static_cast<uint8_t>(color.g + 0.5),
                static_cast<uint8_t>(color.r + 0.5)};
    }
  }
}

/// Fills rectangles given in parts of 1000 of the picture's height.
class Painter {
 public:
  explicit Painter(TBitmap& bitmap) : bitmap_(bitmap) { bitmap_.Canvas().Pen.Style = psClear; }

  void Fill(int left, int top, int right, int bottom, TColor color) {
    bitmap_.Canvas().Brush.Color = color;
    bitmap_.Canvas().FillRect({Scaled(left), Scaled(top), Scaled(right), Scaled(bottom)});
  }

 private:
  int Scaled(int thousandths) const { return thousandths * bitmap_.Height() / 1000; }

  TBitmap& bitmap_;
};

void PaintHouse(Painter& painter) {
  for (int step = 0; step < 22; ++step)
    painter.Fill(190 + step * 9, 500 - step * 8, 610 - step * 9, 509 - step * 8, RGB(150, 58, 44));
  painter.Fill(230, 508, 570, 790, RGB(232, 218, 190));
  painter.Fill(360, 620, 440, 790, RGB(96, 62, 40));
  for (const int left : {265, 475}) {
    painter.Fill(left, 570, left + 60, 650, RGB(250, 250, 250));
    painter.Fill(left + 8, 578, left + 52, 642, RGB(88, 120, 150));
  }
  painter.Fill(500, 300, 540, 420, RGB(120, 70, 58));
}

/// Letters of five by seven blocks.
constexpr std::array<std::string_view, 7> kLetterU = {"#...#", "#...#", "#...#", "#...#",
                                                      "#...#", "#...#", ".###."};
constexpr std::array<std::string_view, 7> kLetterP = {"####.", "#...#", "#...#", "####.",
                                                      "#....", "#....", "#...."};

void PaintLetter(Painter& painter, const std::array<std::string_view, 7>& letter, int left,
                 int top) {
  constexpr int kBlock = 17;
  for (int row = 0; row < 7; ++row)
    for (int column = 0; column < 5; ++column)
      if (letter[static_cast<size_t>(row)][static_cast<size_t>(column)] == '#')
        painter.Fill(left + column * kBlock, top + row * kBlock, left + (column + 1) * kBlock,
                     top + (row + 1) * kBlock, RGB(20, 20, 20));
}

void PaintSign(Painter& painter) {
  painter.Fill(955, 700, 985, 930, RGB(110, 104, 96));
  painter.Fill(820, 330, 1120, 710, RGB(30, 30, 30));
  painter.Fill(830, 340, 1110, 700, RGB(250, 212, 40));
  for (int step = 0; step < 12; ++step)
    painter.Fill(962 - step * 8, 365 + step * 9, 978 + step * 8, 374 + step * 9, RGB(20, 20, 20));
  painter.Fill(944, 470, 996, 545, RGB(20, 20, 20));
  PaintLetter(painter, kLetterU, 870, 562);
  PaintLetter(painter, kLetterP, 985, 562);
}

}  // namespace

TBitmap DrawScene(int width, int height) {
  TBitmap bitmap;
  bitmap.ResetPixels(pf24bit, width, height);
  PaintLandscape(bitmap);
  Painter painter(bitmap);
  PaintHouse(painter);
  PaintSign(painter);
  bitmap.SetDpi({96, 96});
  return bitmap;
}

TBitmap DrawGrayScene(int width, int height) {
  const TBitmap scene = DrawScene(width, height);
  TBitmap gray;
  gray.ResetPixels(pf8bit, width, height);
  gray.SetPalette(GrayPalette(256));
  for (int y = 0; y < height; ++y) {
    const auto* from = reinterpret_cast<const RGBrec*>(scene.ScanLine(y));
    uint8_t* to = gray.ScanLine(y);
    for (int x = 0; x < width; ++x)
      to[x] = static_cast<uint8_t>((from[x].r * 2 + from[x].g * 5 + from[x].b) / 8);
  }
  gray.SetDpi({150, 150});
  return gray;
}

}  // namespace rasterkit::samples

#pragma once

#include <memory>
#include <string>

#include <rasterkit/drawing/context/device_context.h>

namespace rasterkit::test {

/// A white raster with a drawing context; its pixels can be read as text, one line per row.
struct DrawingPaper {
  /// A pixel of the device is a pixel of the raster, unless `toTarget` maps it differently.
  DrawingPaper(int width, int height, const PlaneAffine& toTarget = {})
      : raster(pf32bit, width, height) {
    FillRaster(raster, {0, 0, width, height}, clWhite);
    context = std::make_unique<DeviceContext>(raster, PixelRect{0, 0, width, height},
                                              ReferenceDevice{}, toTarget);
  }

  DeviceContext& Dc() { return *context; }
  TColor At(int x, int y) const { return raster.PixelColor(x, y); }

  /// '.' white, '#' black, '+' a mixture of the two, 'r', 'g', 'b' the full colors, 'o' others.
  std::string Picture() const {
    std::string text = "\n";
    for (int y = 0; y < raster.Height(); ++y) {
      for (int x = 0; x < raster.Width(); ++x) text += Letter(At(x, y));
      text += '\n';
    }
    return text;
  }

  void Pen(TColor color, double width = 0, uint32_t style = 0) {
    Dc().SelectPen(std::make_shared<LogicalPen>(LogicalPen{style, width, color, {}, nullptr}));
  }
  void NoPen() { Pen(clBlack, 0, pen_style::kNull); }
  void Brush(TColor color) {
    LogicalBrush brush;
    brush.color = color;
    Dc().SelectBrush(std::make_shared<LogicalBrush>(brush));
  }
  void NoBrush() {
    LogicalBrush brush;
    brush.kind = LogicalBrush::null;
    Dc().SelectBrush(std::make_shared<LogicalBrush>(brush));
  }

  static char Letter(TColor color) {
    const int r = color & 255, g = color >> 8 & 255, b = color >> 16 & 255;
    if (color == clWhite) return '.';
    if (color == clBlack) return '#';
    if (r == g && g == b) return '+';
    if (color == RGB(255, 0, 0)) return 'r';
    if (color == RGB(0, 255, 0)) return 'g';
    return color == RGB(0, 0, 255) ? 'b' : 'o';
  }

  Raster raster;
  std::unique_ptr<DeviceContext> context;
};

}  // namespace rasterkit::test

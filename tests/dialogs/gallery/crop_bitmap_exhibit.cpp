#include <initializer_list>
#include <span>

#include <rasterkit/dialogs/bitmapframe/crop_bitmap_form.h>
#include <rasterkit/graphics/canvas.h>

#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

void DrawHouse(TCanvas& canvas, int left, int top, int width, int height, TColor roof) {
  canvas.Brush.Color = roof;
  canvas.Rectangle(left, top, left + width, top + height);
  const TPoint ridge[] = {{left, top + height / 2}, {left + width, top + height / 2}};
  canvas.Polyline(ridge);
}

/// A plan of a site: a meadow, a river, a road and some houses.
TBitmap SitePlan() {
  TBitmap plan;
  plan.ResetPixels(pf24bit, 1600, 1000);
  TCanvas& canvas = plan.Canvas();
  canvas.Brush.Color = RGB(226, 235, 214);
  canvas.FillRect({0, 0, 1600, 1000});
  const auto line = [&](std::initializer_list<TPoint> points, int width, TColor color) {
    canvas.Pen = {color, width, psSolid, pmCopy};
    canvas.Polyline(std::span(points.begin(), points.size()));
  };
  line({{-50, 820}, {300, 760}, {620, 860}, {1000, 800}, {1650, 930}}, 90, RGB(158, 197, 222));
  line({{-50, 520}, {500, 480}, {900, 300}, {1650, 260}}, 64, RGB(150, 150, 150));
  line({{-50, 520}, {500, 480}, {900, 300}, {1650, 260}}, 56, RGB(250, 250, 245));
  line({{760, 360}, {820, 640}, {1200, 700}}, 40, RGB(250, 250, 245));
  canvas.Pen = {RGB(90, 50, 40), 3, psSolid, pmCopy};
  for (int i = 0; i < 6; ++i)
    DrawHouse(canvas, 110 + 105 * i, 340 - 22 * i, 78, 64, RGB(214, 130, 104));
  for (int i = 0; i < 4; ++i) DrawHouse(canvas, 880 + 150 * i, 430, 110, 84, RGB(196, 160, 120));
  DrawHouse(canvas, 1250, 560, 220, 130, RGB(170, 150, 150));
  DrawHouse(canvas, 300, 580, 260, 110, RGB(180, 170, 130));
  return plan;
}

const Exhibit kCropBitmap("crop-bitmap", []() -> std::unique_ptr<QWidget> {
  static TBitmap plan = SitePlan();
  return std::make_unique<TFormCropBitmap>(plan, TRect{420, 180, 1240, 740});
});

}  // namespace
}  // namespace rasterkit::test

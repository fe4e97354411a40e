#include <cstdio>
#include <functional>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>

#include "tests/support/drawing_paper.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

constexpr int kWidth = 37, kHeight = 23;
constexpr PixelRect kArea{5, 3, 30, 20};

/// Calls all operations in random order, with numbers from the size of the picture to far beyond.
class RandomDrawing {
 public:
  RandomDrawing(DeviceContext& dc, unsigned seed) : dc_(dc), random_(seed) {
    for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf16bit, pf24bit, pf32bit}) {
      bitmaps_.push_back(test::RandomRaster(format, 1 + Below(20), 1 + Below(20), random_));
    }
  }

  void Call() {
    switch (Below(52)) {
      case 0:
        return dc_.SaveDC();
      case 1:
        return static_cast<void>(dc_.RestoreDC(Below(7) - 4));
      case 2:
        return dc_.SetMapMode(static_cast<MapMode>(Below(10)));
      case 3:
        return dc_.SetWindowExt(Point());
      case 4:
        return dc_.SetViewportExt(Point());
      case 5:
        return dc_.SetWindowOrg(Point());
      case 6:
        return dc_.SetWorldTransform(Matrix());
      case 7:
        return dc_.ModifyWorldTransform(Matrix(), static_cast<WorldChange>(Below(6)));
      case 8:
        return dc_.ModifyWorldTransform({}, WorldChange::identity);
      case 9:
        return dc_.SetMapMode(MapMode::text);
      case 10:
        return dc_.SetRop2(static_cast<Rop2>(Below(18)));
      case 11:
        return dc_.SetBkMode(static_cast<BackgroundMode>(Below(4)));
      case 12:
        return dc_.SetPolyFillMode(static_cast<PolygonFill>(Below(4)));
      case 13:
        return dc_.SelectPen(Pen());
      case 14:
        return dc_.SelectBrush(Brush());
      case 15:
        return dc_.SelectFont(Font());
      case 16:
        return dc_.MoveTo(Point());
      case 17:
      case 18:
        return dc_.LineTo(Point());
      case 19:
        return dc_.Polyline(Points());
      case 20:
        return dc_.PolylineTo(Points());
      case 21:
        return dc_.PolyBezier(Points());
      case 22:
        return dc_.PolyBezierTo(Points());
      case 23:
        return PolyDraw();
      case 24:
        return dc_.Polygon(Points());
      case 25:
        return dc_.PolyPolygon(Points(), Counts());
      case 26:
        return dc_.PolyPolyline(Points(), Counts());
      case 27:
        return dc_.Rectangle(Rect());
      case 28:
        return dc_.RoundRect(Rect(), Point());
      case 29:
        return dc_.Ellipse(Rect());
      case 30:
        return dc_.Arc(Rect(), {Point(), Point()});
      case 31:
        return dc_.ArcTo(Rect(), {Point(), Point()});
      case 32:
        return dc_.Pie(Rect(), {Point(), Point()});
      case 33:
        return dc_.Chord(Rect(), {Point(), Point()});
      case 34:
        return dc_.AngleArc(Point(), Number(), Number(), Number());
      case 35:
        return dc_.SetPixel(Point(), Color());
      case 36:
        return dc_.BeginPath();
      case 37:
        return dc_.EndPath();
      case 38:
        return PathOperation();
      case 39:
        return dc_.SelectClipPath(static_cast<RegionMode>(Below(7)));
      case 40:
        return dc_.IntersectClipRect(Rect());
      case 41:
        return dc_.ExcludeClipRect(Rect());
      case 42:
        return dc_.OffsetClipRgn(Point());
      case 43:
        return SelectRegion();
      case 44:
        return Region();
      case 45:
        return dc_.PatBlt(Rect(), random_());
      case 46:
        return dc_.StretchBlt(Rect(), {Bitmap(), Rect()}, random_());
      case 47:
        return Blit();
      case 48:
        return Gradient();
      case 49:
        return Text();
      case 50:
        return dc_.SetStretchBltMode(static_cast<StretchMode>(Below(6)));
      default:
        return Modes();
    }
  }

 private:
  int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  double Number() {
    switch (Below(12)) {
      case 0:
        return (Below(2000001) - 1000000) * 1e4;
      case 1:
        return Below(2) ? 1e300 : std::nan("");
      case 2:
        return 0;
      default:
        return Below(600) / 10.0 - 10;
    }
  }
  PointD Point() { return {Number(), Number()}; }
  RectD Rect() { return {Number(), Number(), Number(), Number()}; }
  TColor Color() { return static_cast<TColor>(random_() & 0xFFFFFF); }
  PlaneAffine Matrix() {
    const auto part = [&] { return Below(10) == 0 ? Number() : Below(41) / 10.0 - 2; };
    return {part(), part(), part(), part(), Number(), Number()};
  }
  const Raster& Bitmap() { return bitmaps_[static_cast<size_t>(Below(6))]; }
  std::vector<PointD> Points() {
    std::vector<PointD> points(static_cast<size_t>(Below(9)));
    for (PointD& point : points) point = Point();
    return points;
  }
  std::vector<uint32_t> Counts() {
    std::vector<uint32_t> counts(static_cast<size_t>(Below(4)));
    for (uint32_t& count : counts) count = Below(8) == 0 ? random_() : random_() % 5;
    return counts;
  }

  std::shared_ptr<const LogicalBrush> Brush() {
    LogicalBrush brush;
    brush.kind = static_cast<LogicalBrush::Kind>(Below(4));
    brush.color = Color();
    brush.hatch = Below(8) - 1;
    brush.isMono = Below(2) == 0;
    if (brush.kind == LogicalBrush::pattern) {
      brush.bitmap = std::make_shared<Raster>(Bitmap().Clone());
    }
    return std::make_shared<LogicalBrush>(brush);
  }
  std::shared_ptr<const LogicalPen> Pen() {
    LogicalPen pen;
    pen.style = random_() & 0x1FFFF;
    pen.width = Below(3) == 0 ? 0 : Number();
    pen.color = Color();
    for (int i = Below(5); i > 0; --i) pen.dashes.push_back(Number());
    if (Below(4) == 0) pen.brush = Brush();
    return std::make_shared<LogicalPen>(pen);
  }
  std::shared_ptr<const LogicalFont> Font() {
    LogicalFont font;
    font.height = Number();
    font.width = Below(3) ? 0 : Number();
    font.escapement = Below(3) ? 0 : Number() * 60;
    font.weight = Below(1200) - 100;
    font.italic = Below(2) == 0;
    font.underline = Below(3) == 0;
    font.strikeOut = Below(3) == 0;
    font.charset = static_cast<uint8_t>(Below(4));
    font.faceName = Below(2) ? "DejaVu Sans" : "Symbol";
    return std::make_shared<LogicalFont>(font);
  }

  void PolyDraw() {
    const std::vector<PointD> points = Points();
    std::vector<uint8_t> types(points.size());
    for (uint8_t& type : types) type = static_cast<uint8_t>(Below(8));
    dc_.PolyDraw(points, types);
  }
  void PathOperation() {
    switch (Below(8)) {
      case 0:
        return dc_.AbortPath();
      case 1:
        return dc_.CloseFigure();
      case 2:
        return dc_.FlattenPath();
      case 3:
        return dc_.WidenPath();
      case 4:
        return dc_.FillPath();
      case 5:
        return dc_.StrokePath();
      default:
        return dc_.StrokeAndFillPath();
    }
  }
  std::vector<RectD> Rects() {
    std::vector<RectD> rects(static_cast<size_t>(Below(4)));
    for (RectD& rect : rects) rect = Rect();
    return rects;
  }
  RegionUnit Unit() { return Below(2) ? RegionUnit::device : RegionUnit::logical; }
  void SelectRegion() {
    const std::vector<RectD> rects = Rects();
    if (Below(2)) {
      dc_.ExtSelectClipRgn(std::nullopt, Unit(), RegionMode::copy);
    } else {
      dc_.ExtSelectClipRgn(std::span<const RectD>(rects), Unit(),
                           static_cast<RegionMode>(Below(7)));
    }
  }
  void Region() {
    const std::vector<RectD> rects = Rects();
    switch (Below(5)) {
      case 0:
        return dc_.FillRgn(rects, Unit(), *Brush());
      case 1:
        return dc_.FrameRgn(rects, Unit(), *Brush(), Point());
      case 2:
        return dc_.InvertRgn(rects, Unit());
      case 3:
        return dc_.PaintRgn(rects, Unit());
      default:
        return dc_.ExtFloodFill(Point(), Color(), static_cast<FloodFill>(Below(2)));
    }
  }
  void Blit() {
    const PixelPoint origin{Below(30) - 10, Below(30) - 10};
    switch (Below(5)) {
      case 0:
        return dc_.SetDIBitsToDevice(Point(), {Bitmap(), Rect()});
      case 1:
        return dc_.MaskBlt(Rect(), {Bitmap(), Rect()}, bitmaps_[0], origin, random_());
      case 2:
        return dc_.PlgBlt({Point(), Point(), Point()}, {Bitmap(), Rect()},
                          Below(2) ? &bitmaps_[0] : nullptr, origin);
      case 3:
        return dc_.AlphaBlend(Rect(), {Bitmap(), Rect()}, static_cast<uint8_t>(Below(256)),
                              Below(2) == 0);
      default:
        return dc_.TransparentBlt(Rect(), {Bitmap(), Rect()}, Color());
    }
  }
  void Gradient() {
    std::vector<GradientVertex> vertices;
    for (int i = 0; i < 4; ++i) {
      vertices.push_back({Point(), static_cast<uint16_t>(random_()),
                          static_cast<uint16_t>(random_()), static_cast<uint16_t>(random_()), 0});
    }
    const auto index = [&] { return static_cast<uint32_t>(Below(5)); };
    const std::pair<uint32_t, uint32_t> rects[] = {{index(), index()}};
    const std::array<uint32_t, 3> triangles[] = {{index(), index(), index()}};
    dc_.GradientRects(vertices, rects, Below(2) == 0);
    dc_.GradientTriangles(vertices, triangles);
  }
  void Text() {
    const std::u16string_view texts[] = {u"", u"Ab g", u"\xD834\xDD1E", u"\x4E2D\xF061\xDC00"};
    const double steps[] = {Number(), Number()};
    TextRun run;
    run.origin = Point();
    run.options = random_() & 0x20FF;
    if (Below(2)) run.box = Rect();
    run.text = texts[Below(4)];
    run.steps = std::span(steps).first(static_cast<size_t>(Below(3)));
    run.verticalSteps = steps;
    dc_.ExtTextOut(run);
  }
  void Modes() {
    dc_.SetTextAlign(random_() & 0x1FF);
    dc_.SetTextColor(Color());
    dc_.SetBkColor(Color());
    dc_.SetBrushOrg(Point());
    dc_.SetMiterLimit(Number());
    dc_.SetArcDirection(static_cast<ArcDirection>(Below(4)));
    dc_.SetGraphicsMode(static_cast<GraphicsMode>(Below(4)));
    dc_.SetLayout(random_() & 1);
    dc_.SetTextCharacterExtra(Number());
    dc_.SetTextJustification(Number(), Below(5) - 1);
    if (Below(20) == 0) dc_.SetMetaRgn();
  }

  DeviceContext& dc_;
  std::mt19937 random_;
  std::vector<Raster> bitmaps_;
};

TEST(DeviceContext, Should_TouchNothingOutsideItsArea_When_AnythingIsDrawn) {
  for (unsigned seed = 1; seed <= 150; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    test::DrawingPaper paper(kWidth, kHeight);
    paper.context.reset();
    {
      const double scale = seed % 3 == 0 ? 0.3 : seed % 3;
      DeviceContext context(paper.raster, kArea, ReferenceDevice{},
                            PlaneAffine::Scaling(scale, scale));
      RandomDrawing drawing(context, seed);
      for (int i = 0; i < 200; ++i) {
        try {
          drawing.Call();
        } catch (const LimitError&) {
          // Wide pens around thousands of letters; the context stays usable.
        }
      }
    }
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        const bool isInside =
            x >= kArea.left && x < kArea.right && y >= kArea.top && y < kArea.bottom;
        if (isInside) {
          ASSERT_EQ(paper.raster.Row(y)[4 * x + 3], 255);
        } else {
          ASSERT_EQ(paper.At(x, y), clWhite) << x << ", " << y;
        }
      }
    }
  }
}

}  // namespace
}  // namespace rasterkit

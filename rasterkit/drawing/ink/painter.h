#pragma once

#include <functional>
#include <vector>

#include <rasterkit/drawing/ink/cairo_handles.h>
#include <rasterkit/drawing/ink/clip_area.h>
#include <rasterkit/drawing/ink/drawing_work.h>
#include <rasterkit/drawing/ink/ink.h>
#include <rasterkit/drawing/ink/stroke_style.h>
#include <rasterkit/drawing/ink/ternary_rows.h>

namespace rasterkit::detail {

/// Paints on a raster inside a clip area. Shapes of one color without a raster operation are
/// painted by cairo directly. All others are computed here: the result of the operation is mixed
/// into each pixel by the coverage of the shape.
class Painter {
 public:
  /// `target` must be pf32bit. `frame` must lie inside it and be at most kMaxSide wide and high.
  /// When the painter is destroyed, all pixels of the frame have alpha 255. The cost of painting is
  /// charged to `work`, which must outlive the painter.
  Painter(Raster& target, const PixelRect& frame, DrawingWork& work);
  ~Painter();
  Painter(const Painter&) = delete;
  Painter& operator=(const Painter&) = delete;

  static constexpr int kMaxSide = 32767;

  const PixelRect& Frame() const { return frame_; }
  DrawingWork& Work() const { return work_; }
  void SetClip(ClipArea::Pointer clip);
  const ClipArea& Clip() const { return *clip_; }

  void Fill(const DrawingPath& path, PolygonFill fill, const Ink& ink, TernaryCode code);
  void Stroke(const DrawingPath& path, const StrokeStyle& style, const Ink& ink, TernaryCode code);
  /// Strokes a single line.
  void StrokeLine(PointD from, PointD to, const StrokeStyle& style, const Ink& ink,
                  TernaryCode code);
  void FillBox(const PixelRect& box, const Ink& ink, TernaryCode code);
  void FillMask(const CoverageMask& shape, const Ink& ink, TernaryCode code);
  /// Paints what `draw` covers inside the box.
  void Draw(const PixelRect& box, const Ink& ink, TernaryCode code,
            const std::function<void(cairo_t*)>& draw);
  /// Paints a bitmap. `source` is pf32bit; its first pixel lies at the upper left corner of the
  /// box, it is at least as large as the box, and its alpha is the coverage. `shape`, if not null,
  /// limits the coverage further and must contain the box.
  void PutSource(const PixelRect& box, const Raster& source, const Ink& ink, TernaryCode code,
                 const CoverageMask* shape = nullptr);

  /// Returns the color of a pixel of the frame.
  uint32_t Pixel(int x, int y) const;
  /// Returns a row of the target, from its first pixel.
  const uint32_t* PictureRow(int y) const;

 private:
  /// The inputs of one painted part of the picture.
  struct Layer {
    const Ink& ink;
    TernaryCode code;
    const CoverageMask* shape = nullptr;
    const Raster* source = nullptr;
    PixelPoint sourceOrigin = {};
  };

  uint32_t* TargetRow(int y);
  cairo_t* Direct();
  void MakeContext();
  void SetDirectColor(uint32_t pixel);
  bool IsDirect(const Ink& ink, TernaryCode code) const;
  /// Does the same as `Draw`, but charges `directCost` if cairo paints alone.
  void DrawAtCost(const PixelRect& box, const Ink& ink, TernaryCode code, double directCost,
                  const std::function<void(cairo_t*)>& draw);
  void Compose(const PixelRect& box, const Layer& layer);
  /// Returns whether all pixels get one color, independent of the picture.
  bool IsPlain(const Layer& layer) const;
  void ComposeRect(const PixelRect& box, const Layer& layer);
  void ComposeRow(int y, int left, int count, const Layer& layer);

  Raster& target_;
  const PixelRect frame_;
  DrawingWork& work_;
  ClipArea::Pointer clip_;
  CairoSurface surface_;
  CairoContext cairo_;
  bool isClipSet_ = false;
  uint32_t color_ = 0;
  uint64_t styleSerial_ = 0;
  /// Scratch rows.
  std::vector<uint32_t> brushRow_, sourceRow_, resultRow_;
  std::vector<uint8_t> coverageRow_;
};

}  // namespace rasterkit::detail

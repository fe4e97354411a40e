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

/// Paints on the rows of a raster, inside a clip area. What copies one colour goes straight to
/// cairo; everything else is computed here: the operation's result for a pixel is mixed into it by
/// how much of the pixel the shape covers.
class Painter {
 public:
  /// `target` has 32 bits. `frame` lies inside it and is at most kMaxSide wide and high. Pixels of
  /// the frame have alpha 255 when the painter is gone. What is painted is taken from `work`, which
  /// stays alive as long as the painter.
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
  /// A path of one line.
  void StrokeLine(PointD from, PointD to, const StrokeStyle& style, const Ink& ink,
                  TernaryCode code);
  void FillBox(const PixelRect& box, const Ink& ink, TernaryCode code);
  void FillMask(const CoverageMask& shape, const Ink& ink, TernaryCode code);
  /// Whatever `draw` covers inside the box.
  void Draw(const PixelRect& box, const Ink& ink, TernaryCode code,
            const std::function<void(cairo_t*)>& draw);
  /// `source` has 32 bits; its first pixel lies at the box's upper left corner, its size is the
  /// box's or larger, and its alpha says how much of a pixel is meant. `shape`, where there is one,
  /// limits that, and holds the box.
  void PutSource(const PixelRect& box, const Raster& source, const Ink& ink, TernaryCode code,
                 const CoverageMask* shape = nullptr);

  /// The colour of a pixel of the frame.
  uint32_t Pixel(int x, int y) const;
  /// A row of the target, from its first pixel.
  const uint32_t* PictureRow(int y) const;

 private:
  /// What a part of the picture is computed from.
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
  /// As `Draw`; where cairo paints alone, that costs `directCost`.
  void DrawAtCost(const PixelRect& box, const Ink& ink, TernaryCode code, double directCost,
                  const std::function<void(cairo_t*)>& draw);
  void Compose(const PixelRect& box, const Layer& layer);
  /// Pixels get one colour, whatever they were.
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
  /// Rows that are worked on.
  std::vector<uint32_t> brushRow_, sourceRow_, resultRow_;
  std::vector<uint8_t> coverageRow_;
};

}  // namespace rasterkit::detail

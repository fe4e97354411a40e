#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include <rasterkit/drawing/ink/affine.h>
#include <rasterkit/drawing/ink/drawing_modes.h>
#include <rasterkit/drawing/ink/drawing_objects.h>
#include <rasterkit/drawing/text/text_run.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/palette.h>

namespace rasterkit {

/// Two points on the rays at which an arc begins and ends: see `DeviceContext::Arc`.
struct ArcEnds {
  PointD start, end;
};

/// A corner of a gradient: a point in logical units and its colour, 0 to 65535 a channel.
struct GradientVertex {
  PointD point;
  uint16_t red = 0, green = 0, blue = 0, alpha = 0;
};

/// The part of a bitmap that a blit shows, in its pixels from the upper left corner; right before
/// left or bottom above top mirrors. What of it lies outside the bitmap leaves the picture alone.
struct BitmapPart {
  const Raster& bitmap;
  RectD part;
};

/// A drawing context: pens, brushes, fonts, modes, a clipping region and a path, and the operations
/// that draw with them on a raster. It knows no metafile; players call it.
///
/// Coordinates are logical units unless a name says device: the world transform makes page units of
/// them, the mapping mode pixels of the recording device, and `toTarget` pixels of the raster.
/// Any finite numbers are allowed, others count as 0. Lines and curves are drawn with soft edges;
/// edges along the axes are put onto pixels. A cosmetic pen is one pixel of the recording device
/// wide, but never less than one of the raster. A "box" is given by two corners, of which the
/// right and lower one is not drawn in compatible graphics mode.
///
/// While a path is open, lines, shapes and texts add to the path and draw nothing.
///
/// Nothing throws but LimitError, where a copy of the picture's part does not fit the memory budget
/// or a shape is beyond all measure, and std::bad_alloc; the context may be used on.
/// DrawingWorkError says that all calls together cost too much: nothing more is painted from there
/// on. One context is used by one thread at a time; contexts of different rasters do not meet.
class DeviceContext {
 public:
  /// Draws on `target`, which has 32 bits and stays alive and in place as long as the context does,
  /// inside the pixels `clip` of it. Drawn pixels get alpha 255. `toTarget` takes pixels of the
  /// recording device, after world transform and mapping, to pixels of the raster.
  DeviceContext(Raster& target, const PixelRect& clip, const ReferenceDevice& device,
                const Affine& toTarget);
  ~DeviceContext();
  DeviceContext(const DeviceContext&) = delete;
  DeviceContext& operator=(const DeviceContext&) = delete;

  /// Counts work that is done elsewhere for this drawing (see DrawingWork), as reading bitmaps is.
  /// Throws DrawingWorkError when it becomes too much.
  void CountWork(double cost);
  /// Lets the drawing cost so much more than one of its size usually may.
  void AllowWork(double more);

  /// What all calls so far would have painted without any clipping, in pixels of the recording
  /// device; nothing when that is nothing. For pictures that do not say how large they are: play
  /// them on a raster of one pixel.
  std::optional<RectD> DrawnBounds() const;

  // ---- State ----

  /// Puts all of the state by (everything but the path and the picture).
  void SaveDC();
  /// Negative: the state put by so many calls ago (-1 the last); positive: the one of that number,
  /// counted from 1. What was put by later is dropped. False, and nothing happens, where there is
  /// none.
  bool RestoreDC(int32_t number);

  void SetMapMode(MapMode mode);
  void SetWindowOrg(PointD origin);
  void SetWindowExt(PointD extent);
  void SetViewportOrg(PointD origin);
  void SetViewportExt(PointD extent);
  void OffsetWindowOrg(PointD by);
  void OffsetViewportOrg(PointD by);
  /// Extents times `numerator` through `denominator`; nothing where one of either is 0.
  void ScaleWindowExt(PointD numerator, PointD denominator);
  void ScaleViewportExt(PointD numerator, PointD denominator);
  void SetWorldTransform(const Affine& matrix);
  void ModifyWorldTransform(const Affine& matrix, WorldChange change);
  void SetGraphicsMode(GraphicsMode mode);
  /// See kLayoutRightToLeft.
  void SetLayout(uint32_t layout);

  void SetTextColor(TColor color);
  void SetBkColor(TColor color);
  void SetBkMode(BackgroundMode mode);
  void SetRop2(Rop2 rop);
  void SetPolyFillMode(PolygonFill fill);
  void SetStretchBltMode(StretchMode mode);
  void SetArcDirection(ArcDirection direction);
  void SetMiterLimit(double limit);
  /// In pixels of the recording device.
  void SetBrushOrg(PointD origin);
  /// See text_align.
  void SetTextAlign(uint32_t align);
  /// Added to the step of every character, logical units.
  void SetTextCharacterExtra(double extra);
  /// `extra` logical units are spread over `breaks` spaces.
  void SetTextJustification(double extra, int32_t breaks);

  /// Null selects what a new context has: a black cosmetic pen, a white brush, the system's font.
  void SelectPen(std::shared_ptr<const LogicalPen> pen);
  void SelectBrush(std::shared_ptr<const LogicalBrush> brush);
  void SelectFont(std::shared_ptr<const LogicalFont> font);
  /// The font that is selected.
  const LogicalFont& Font() const;
  /// Null selects what a new context has: the twenty colours that all devices showed. Whoever
  /// shares a palette may change it while it is selected.
  void SelectPalette(std::shared_ptr<HPALETTE> palette);
  /// Null for that of a new context.
  const std::shared_ptr<HPALETTE>& SelectedPalette() const;
  /// What numbers of colours mean now.
  const HPALETTE& Palette() const;
  /// What the current mapping makes of a point: pixels of the recording device.
  PointD DevicePoint(PointD logical) const;
  PointD CurrentPosition() const;

  // ---- Lines and curves: drawn with the pen ----

  void MoveTo(PointD to);
  void LineTo(PointD to);
  void Polyline(std::span<const PointD> points);
  /// From the current position, which becomes the last point.
  void PolylineTo(std::span<const PointD> points);
  /// A point, then three for each curve; a rest of fewer is left out.
  void PolyBezier(std::span<const PointD> points);
  void PolyBezierTo(std::span<const PointD> points);
  /// `types` has for each point 6 (move), 2 (line) or 4 (curve, three in a row), and 1 more where
  /// the figure is closed after it.
  void PolyDraw(std::span<const PointD> points, std::span<const uint8_t> types);
  /// `counts` points each.
  void PolyPolyline(std::span<const PointD> points, std::span<const uint32_t> counts);
  /// Of the ellipse in the box, from the ray through `ends.start` to the ray through `ends.end`
  /// (rays from the centre), in the arc direction.
  void Arc(const RectD& box, const ArcEnds& ends);
  /// As `Arc`, after a line from the current position to its beginning; the position becomes its
  /// end.
  void ArcTo(const RectD& box, const ArcEnds& ends);
  /// A line from the current position to the arc, and the arc: degrees against the clock, from the
  /// x axis.
  void AngleArc(PointD center, double radius, double startAngle, double sweepAngle);

  // ---- Shapes: filled with the brush, then drawn with the pen ----

  void Polygon(std::span<const PointD> points);
  void PolyPolygon(std::span<const PointD> points, std::span<const uint32_t> counts);
  void Rectangle(const RectD& box);
  /// `corner` is width and height of the ellipse that rounds each corner.
  void RoundRect(const RectD& box, PointD corner);
  void Ellipse(const RectD& box);
  void Chord(const RectD& box, const ArcEnds& ends);
  void Pie(const RectD& box, const ArcEnds& ends);

  // ---- Pixels and areas ----

  void SetPixel(PointD at, TColor color);
  /// Without pen, with a brush that need not be selected.
  void FillRgn(std::span<const RectD> region, RegionUnit unit, const LogicalBrush& brush);
  /// A frame of that width and height inside the region.
  void FrameRgn(std::span<const RectD> region, RegionUnit unit, const LogicalBrush& brush,
                PointD thickness);
  void InvertRgn(std::span<const RectD> region, RegionUnit unit);
  /// With the selected brush.
  void PaintRgn(std::span<const RectD> region, RegionUnit unit);
  /// With the selected brush, from the pixel `at`; `color` is what `FloodFill` speaks of.
  void ExtFloodFill(PointD at, TColor color, FloodFill kind);
  /// Between two corners of a rectangle each, by indexes into `vertices`: left to right, or top to
  /// bottom. Indexes beyond the vertices leave their shape out.
  void GradientRects(std::span<const GradientVertex> vertices,
                     std::span<const std::pair<uint32_t, uint32_t>> rects, bool isVertical);
  void GradientTriangles(std::span<const GradientVertex> vertices,
                         std::span<const std::array<uint32_t, 3>> triangles);

  // ---- Paths ----

  void BeginPath();
  void EndPath();
  void AbortPath();
  void CloseFigure();
  /// Curves become lines.
  void FlattenPath();
  /// The path becomes the outline of what the pen would draw along it.
  void WidenPath();
  /// These use the path up; they draw with the brush, the pen, or both.
  void FillPath();
  void StrokePath();
  void StrokeAndFillPath();
  void SelectClipPath(RegionMode mode);

  // ---- Clipping ----

  void IntersectClipRect(const RectD& rect);
  void ExcludeClipRect(const RectD& rect);
  void OffsetClipRgn(PointD by);
  /// `copy` with an absent region takes all clipping away; a region without rectangles is empty.
  void ExtSelectClipRgn(std::optional<std::span<const RectD>> region, RegionUnit unit,
                        RegionMode mode);
  /// What is clipped now stays so, until a state from before is restored.
  void SetMetaRgn();

  // ---- Bitmaps ----
  // `dest` is in logical units; a corner more to the left or above mirrors. Rasters may have any
  // format; what of a source lies outside it leaves the picture alone.

  /// By an operation that needs no source (see rop3), with the selected brush as pattern.
  void PatBlt(const RectD& dest, uint32_t rop);
  /// BitBlt and StretchBlt.
  void StretchBlt(const RectD& dest, const BitmapPart& source, uint32_t rop);
  /// One pixel of the bitmap is one pixel of the recording device; `topLeft` is logical.
  void SetDIBitsToDevice(PointD topLeft, const BitmapPart& source);
  /// `rop` holds two operations: bits 16 to 23 where the mask has 1, bits 24 to 31 where it has 0
  /// or ends. `maskOrigin` is the mask's pixel for the upper left one of `dest`.
  void MaskBlt(const RectD& dest, const BitmapPart& source, const Raster& mask,
               PixelPoint maskOrigin, uint32_t rop);
  /// Upper left, upper right and lower left corner; a mask shows the source where it has 1.
  void PlgBlt(const std::array<PointD, 3>& corners, const BitmapPart& source, const Raster* mask,
              PixelPoint maskOrigin);
  /// With `hasAlpha` the source's bytes are premultiplied by its alpha, as metafiles hold them;
  /// sources of less than 32 bits have none.
  void AlphaBlend(const RectD& dest, const BitmapPart& source, uint8_t constantAlpha,
                  bool hasAlpha);
  /// Without the pixels of the colour `key`.
  void TransparentBlt(const RectD& dest, const BitmapPart& source, TColor key);

  // ---- Text ----

  void ExtTextOut(const TextRun& run);

  /// What it is made of, for the files that implement it.
  struct Parts;

 private:
  std::unique_ptr<Parts> parts_;
};

}  // namespace rasterkit

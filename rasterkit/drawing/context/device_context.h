#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include <rasterkit/drawing/ink/drawing_modes.h>
#include <rasterkit/drawing/ink/drawing_objects.h>
#include <rasterkit/drawing/ink/plane_affine.h>
#include <rasterkit/drawing/text/text_run.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/palette.h>

namespace rasterkit {

/// Two points on the rays at which an arc starts and ends; see `DeviceContext::Arc`.
struct ArcEnds {
  PointD start, end;
};

/// A vertex of a gradient: a point in logical units and its color, 0 to 65535 per channel.
struct GradientVertex {
  PointD point;
  uint16_t red = 0, green = 0, blue = 0, alpha = 0;
};

/// The part of a bitmap to draw, in its pixels from the upper left corner. It is mirrored if right
/// lies before left or bottom above top. Pixels outside the bitmap are not drawn.
struct BitmapPart {
  const Raster& bitmap;
  RectD part;
};

/// A drawing context: pens, brushes, fonts, modes, a clipping region and a path, and the operations
/// that draw with them on a raster. It is independent of the metafile formats, whose players call
/// it.
///
/// Coordinates are logical units unless a name says device. The world transform maps them to page
/// units, the mapping mode to pixels of the recording device, and `toTarget` to pixels of the
/// raster. All numbers are allowed; non-finite ones are read as 0. Lines and curves are
/// antialiased; edges along the axes are aligned to pixels. A cosmetic pen is one pixel of the
/// recording device wide, but at least one pixel of the raster. A "box" is given by two corners; in
/// compatible graphics mode its right column and bottom row are not drawn.
///
/// While a path is open, lines, shapes and texts are added to the path and are not drawn.
///
/// Throws only LimitError, if a copy of a part of the picture exceeds the memory budget or a shape
/// is too complex, and std::bad_alloc; the context stays usable. DrawingWorkError, a LimitError,
/// means that all calls together exceed the work budget: nothing is painted from then on. Use a
/// context in one thread at a time; contexts of different rasters are independent.
class DeviceContext {
 public:
  /// Draws on `target` inside the pixels `clip`. `target` must be pf32bit, outlive the context and
  /// not be reallocated or moved. Drawn pixels get alpha 255. `toTarget` maps pixels of the
  /// recording device to pixels of the raster.
  DeviceContext(Raster& target, const PixelRect& clip, const ReferenceDevice& device,
                const PlaneAffine& toTarget);
  ~DeviceContext();
  DeviceContext(const DeviceContext&) = delete;
  DeviceContext& operator=(const DeviceContext&) = delete;

  /// Charges work that is done outside the context for this drawing, such as decoding bitmaps; see
  /// DrawingWork. Throws DrawingWorkError if the budget is exceeded.
  void ChargeWork(double cost);
  /// Raises the work budget by `more`.
  void RaiseWorkBudget(double more);

  /// Returns the bounding box of everything that all calls would have painted without clipping, in
  /// pixels of the recording device; nothing if that is empty. To find the size of a picture that
  /// does not state it, play it on a raster of one pixel.
  std::optional<RectD> DrawnBounds() const;

  // ---- State ----

  /// The number of states that SaveDC keeps; further calls are only counted.
  static constexpr size_t kMostSavedStates = 4096;
  /// Saves the state: everything but the path and the picture.
  void SaveDC();
  /// Restores a saved state and drops those that were saved after it. A negative number counts back
  /// from the last one (-1), a positive one counts from the first one (1). Returns false, and
  /// changes nothing, if there is no such state.
  bool RestoreDC(int32_t number);

  void SetMapMode(MapMode mode);
  void SetWindowOrg(PointD origin);
  void SetWindowExt(PointD extent);
  void SetViewportOrg(PointD origin);
  void SetViewportExt(PointD extent);
  void OffsetWindowOrg(PointD by);
  void OffsetViewportOrg(PointD by);
  /// Multiplies the extents by `numerator` / `denominator`; a no-op if one of their numbers is 0.
  void ScaleWindowExt(PointD numerator, PointD denominator);
  void ScaleViewportExt(PointD numerator, PointD denominator);
  void SetWorldTransform(const PlaneAffine& matrix);
  void ModifyWorldTransform(const PlaneAffine& matrix, WorldChange change);
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
  /// Sets extra space after every character, in logical units.
  void SetTextCharacterExtra(double extra);
  /// Distributes `extra` logical units over `breaks` spaces.
  void SetTextJustification(double extra, int32_t breaks);

  /// Null selects the initial object: a black cosmetic pen, a white brush, the system font.
  void SelectPen(std::shared_ptr<const LogicalPen> pen);
  void SelectBrush(std::shared_ptr<const LogicalBrush> brush);
  void SelectFont(std::shared_ptr<const LogicalFont> font);
  /// Returns the selected font.
  const LogicalFont& Font() const;
  /// Null selects the initial palette: the twenty colors common to all devices. A palette may be
  /// changed by its owners while it is selected.
  void SelectPalette(std::shared_ptr<HPALETTE> palette);
  /// Returns null for the initial palette.
  const std::shared_ptr<HPALETTE>& SelectedPalette() const;
  /// Returns the palette that color indexes refer to.
  const HPALETTE& Palette() const;
  /// Maps a logical point to pixels of the recording device.
  PointD DevicePoint(PointD logical) const;
  PointD CurrentPosition() const;

  // ---- Lines and curves: drawn with the pen ----

  void MoveTo(PointD to);
  void LineTo(PointD to);
  void Polyline(std::span<const PointD> points);
  /// Draws lines from the current position; the last point becomes the current position.
  void PolylineTo(std::span<const PointD> points);
  /// `points` are a start point and three points per curve; incomplete curves are ignored.
  void PolyBezier(std::span<const PointD> points);
  void PolyBezierTo(std::span<const PointD> points);
  /// `types` has 6 (move), 2 (line) or 4 (curve, three in a row) for each point, plus 1 to close
  /// the figure after it.
  void PolyDraw(std::span<const PointD> points, std::span<const uint8_t> types);
  /// `counts` holds the number of points of each polyline.
  void PolyPolyline(std::span<const PointD> points, std::span<const uint32_t> counts);
  /// Draws an arc of the ellipse in the box, in the arc direction, from the ray through
  /// `ends.start` to the ray through `ends.end`. Both rays begin at the center.
  void Arc(const RectD& box, const ArcEnds& ends);
  /// Draws a line from the current position to the start of the arc, then the arc; its end becomes
  /// the current position.
  void ArcTo(const RectD& box, const ArcEnds& ends);
  /// Draws a line from the current position to the arc, then the arc. Angles are counter-clockwise
  /// degrees from the x axis.
  void AngleArc(PointD center, double radius, double startAngle, double sweepAngle);

  // ---- Shapes: filled with the brush, then drawn with the pen ----

  void Polygon(std::span<const PointD> points);
  void PolyPolygon(std::span<const PointD> points, std::span<const uint32_t> counts);
  void Rectangle(const RectD& box);
  /// `corner` is the width and height of the ellipse at each corner.
  void RoundRect(const RectD& box, PointD corner);
  void Ellipse(const RectD& box);
  void Chord(const RectD& box, const ArcEnds& ends);
  void Pie(const RectD& box, const ArcEnds& ends);

  // ---- Pixels and areas ----

  void SetPixel(PointD at, TColor color);
  /// Fills a region with a brush that need not be selected.
  void FillRgn(std::span<const RectD> region, RegionUnit unit, const LogicalBrush& brush);
  /// Fills a frame of that width and height inside the region.
  void FrameRgn(std::span<const RectD> region, RegionUnit unit, const LogicalBrush& brush,
                PointD thickness);
  void InvertRgn(std::span<const RectD> region, RegionUnit unit);
  /// Fills a region with the selected brush.
  void PaintRgn(std::span<const RectD> region, RegionUnit unit);
  /// Fills from the pixel `at` with the selected brush; see `FloodFill` for `color`.
  void ExtFloodFill(PointD at, TColor color, FloodFill kind);
  /// Fills rectangles with gradients. Each rectangle is given by two corners, as indexes into
  /// `vertices`; the color changes from left to right, or from top to bottom. Shapes with an
  /// invalid index are skipped.
  void GradientRects(std::span<const GradientVertex> vertices,
                     std::span<const std::pair<uint32_t, uint32_t>> rects, bool isVertical);
  void GradientTriangles(std::span<const GradientVertex> vertices,
                         std::span<const std::array<uint32_t, 3>> triangles);

  // ---- Paths ----

  void BeginPath();
  void EndPath();
  void AbortPath();
  void CloseFigure();
  /// Replaces curves by lines.
  void FlattenPath();
  /// Replaces the path by the outline of what the pen would draw along it.
  void WidenPath();
  /// Fills the path with the brush and discards it, as do the next three functions.
  void FillPath();
  /// Draws along the path with the pen.
  void StrokePath();
  /// Fills the path with the brush, then draws along it with the pen.
  void StrokeAndFillPath();
  /// Combines the inside of the path with the clipping region.
  void SelectClipPath(RegionMode mode);

  // ---- Clipping ----

  void IntersectClipRect(const RectD& rect);
  void ExcludeClipRect(const RectD& rect);
  void OffsetClipRgn(PointD by);
  /// `copy` without a region removes all clipping; a region without rectangles is empty.
  void ExtSelectClipRgn(std::optional<std::span<const RectD>> region, RegionUnit unit,
                        RegionMode mode);
  /// Makes the current clipping permanent until a state saved before is restored.
  void SetMetaRgn();

  // ---- Bitmaps ----
  // `dest` is in logical units; it is mirrored if its second corner lies to the left of or above
  // the first. Rasters may have any format. Pixels outside a source are not drawn.

  /// Draws with an operation that needs no source (see rop3) and the selected brush as pattern.
  void PatBlt(const RectD& dest, uint32_t rop);
  /// Draws a bitmap, stretched if the sizes differ.
  void StretchBlt(const RectD& dest, const BitmapPart& source, uint32_t rop);
  /// Draws a bitmap so that one pixel of it is one pixel of the recording device; `topLeft` is in
  /// logical units.
  void SetDIBitsToDevice(PointD topLeft, const BitmapPart& source);
  /// Draws with two operations: bits 16 to 23 of `rop` where the mask is 1, bits 24 to 31 where it
  /// is 0 or ends. `maskOrigin` is the mask's pixel at the upper left pixel of `dest`.
  void MaskBlt(const RectD& dest, const BitmapPart& source, const Raster& mask,
               PixelPoint maskOrigin, uint32_t rop);
  /// `corners` are upper left, upper right and lower left. With a mask, the source is drawn where
  /// the mask is 1.
  void PlgBlt(const std::array<PointD, 3>& corners, const BitmapPart& source, const Raster* mask,
              PixelPoint maskOrigin);
  /// With `hasAlpha`, the source is premultiplied by its alpha, as in metafiles; sources of less
  /// than 32 bits per pixel are opaque.
  void AlphaBlend(const RectD& dest, const BitmapPart& source, uint8_t constantAlpha,
                  bool hasAlpha);
  /// Draws all pixels but those of the color `key`.
  void TransparentBlt(const RectD& dest, const BitmapPart& source, TColor key);

  // ---- Text ----

  void ExtTextOut(const TextRun& run);

  /// Implementation, shared by device_context_*.cpp.
  struct Parts;

 private:
  std::unique_ptr<Parts> parts_;
};

}  // namespace rasterkit

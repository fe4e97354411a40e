#pragma once

#include <optional>
#include <set>
#include <span>
#include <tuple>
#include <vector>

#include <rasterkit/drawing/context/brush_ink.h>
#include <rasterkit/drawing/context/device_context.h>
#include <rasterkit/drawing/context/shared_edges.h>
#include <rasterkit/drawing/ink/drawing_cost.h>
#include <rasterkit/drawing/ink/drawing_state.h>
#include <rasterkit/drawing/ink/painter.h>
#include <rasterkit/drawing/ink/pixel_boxes.h>
#include <rasterkit/drawing/text/font_faces.h>

namespace rasterkit {

/// The parts of a drawing context, and helpers that several kinds of operations share.
struct DeviceContext::Parts {
  using Path = detail::DrawingPath;

  Parts(Raster& target, const PixelRect& clip, const ReferenceDevice& device,
        const PlaneAffine& toTarget);

  // ---- Mapping ----

  /// Returns the map from logical units to pixels of the target.
  const PlaneAffine& ToTarget();
  PointD Mapped(PointD logical) { return ToTarget()(logical); }
  /// Returns the map from units of a region to the target.
  PlaneAffine MapOf(RegionUnit unit) {
    return unit == RegionUnit::device ? deviceToTarget : ToTarget();
  }

  /// To be called after changes: of the mapping, the pen, the brush, or the colors of both.
  void MappingChanged();
  void PenChanged() { pen_.reset(); }
  void BrushChanged() { brush_.reset(); }
  void ColorsChanged();
  void ClipChanged();
  void StateChanged();

  // ---- Drawing ----

  /// Returns null for the null pen.
  const detail::StrokeStyle* PenStyle();
  const detail::Ink& PenInk();
  /// Returns null for the null brush.
  const detail::Ink* BrushInk();
  detail::TernaryCode Code() const { return detail::CodeOf(state.rop); }

  void Fill(const Path& outline);
  /// Fills a shape whose edges no outline will cover, so that no background shows between adjacent
  /// areas.
  void FillAlone(const Path& outline);
  void Stroke(const Path& outline);
  /// Returns whether areas must be filled up to the centers of lines: the pen draws, and pixels of
  /// the device are larger than those of the target, so that the offset of lines is visible.
  bool FillsToLines();
  /// Returns the area to fill inside an outline that is drawn as well.
  Path AlongLines(const Path& outline);
  /// Adds the outline to the open path, or fills and strokes it.
  void Shape(const Path& outline);
  void Line(const Path& outline);
  /// Returns the open path, or a new one that starts at the current position.
  Path StartedPath();
  /// Adds to the drawn bounds: the box, extended by `reach` pixels on every side.
  void AddBounds(const RectD& box, double reach = 0);
  void AddBounds(const Path& outline, double reach = 0);
  /// Adds what the pen draws along a box.
  void AddStrokeBounds(const RectD& box, const detail::StrokeStyle& style);

  /// Returns the rectangles as an area of the target: with rounded edges, or slanted if the map
  /// rotates.
  detail::ClipArea::Pointer AreaOf(std::span<const RectD> rects, RegionUnit unit);
  void CombineClip(const detail::ClipArea::Pointer& area, RegionMode mode);
  /// Operations on clip areas that charge their cost.
  detail::ClipArea::Pointer Combined(const detail::ClipArea::Pointer& current,
                                     const detail::ClipArea::Pointer& other, RegionMode mode);
  detail::ClipArea::Pointer Moved(const detail::ClipArea& area, int dx, int dy);
  detail::ClipArea::Pointer AreaOfPath(const Path& outline, PolygonFill fill);
  /// Returns the ink of a brush and charges its cost.
  std::optional<detail::Ink> InkOf(const LogicalBrush& brush);
  const detail::ClipArea::Pointer& VisibleClip() const { return visibleClip_; }

  // ---- Parts ----

  const ReferenceDevice device;
  const PlaneAffine deviceToTarget;
  detail::DrawingWork work;
  detail::Painter painter;
  detail::FontFaces fonts;

  detail::DrawingState state;
  std::vector<detail::DrawingState> saved;
  /// SaveDC calls beyond the limit of kept states.
  uint64_t savedBeyond = 0;

  bool isPathOpen = false;
  /// The next line of the open path starts a figure at the current position.
  bool startsFigure = true;
  Path path;
  /// Set by WidenPath: the path stands for what this pen covers along it.
  std::optional<detail::StrokeStyle> widened;

  std::optional<RectD> drawn;  ///< pixels of the target

  /// Recently used fonts and letter maps.
  using LetterKey = std::tuple<const detail::FontFace*, double, double, double, double>;
  std::set<LetterKey> letterMaps;

 private:
  /// Charges the cost of creating the area.
  void ChargeArea(const detail::ClipArea& area);
  detail::ClipArea::Pointer RegionOf(std::span<const PixelRect> boxes);

  struct PenParts {
    std::optional<detail::StrokeStyle> style;
    detail::Ink ink;
  };
  const PenParts& Pen();

  std::optional<PlaneAffine> toTarget_;
  detail::ClipArea::Pointer visibleClip_;
  std::optional<PenParts> pen_;
  std::optional<std::optional<detail::Ink>> brush_;
  uint64_t styleSerial_ = 0;
  detail::SharedEdges filledEdges_;
};

namespace detail {

/// Restricts the painter to `clip` during the lifetime of this object.
class NarrowedClip {
 public:
  NarrowedClip(DeviceContext::Parts& parts, ClipArea::Pointer clip) : parts_(parts) {
    parts_.painter.SetClip(std::move(clip));
  }
  ~NarrowedClip() { parts_.painter.SetClip(parts_.VisibleClip()); }
  NarrowedClip(const NarrowedClip&) = delete;
  NarrowedClip& operator=(const NarrowedClip&) = delete;

 private:
  DeviceContext::Parts& parts_;
};

/// NaN and infinity become 0.
inline double Finite(double value) {
  return std::isfinite(value) ? value : 0;
}
inline PointD Finite(PointD p) {
  return {Finite(p.x), Finite(p.y)};
}
inline RectD Finite(const RectD& r) {
  return {Finite(r.left), Finite(r.top), Finite(r.right), Finite(r.bottom)};
}

}  // namespace detail
}  // namespace rasterkit

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

/// What a drawing context is made of, and what several kinds of operations share.
struct DeviceContext::Parts {
  using Path = detail::DrawingPath;

  Parts(Raster& target, const PixelRect& clip, const ReferenceDevice& device,
        const Affine& toTarget);

  // ---- Mapping ----

  /// Logical units to pixels of the target.
  const Affine& ToTarget();
  PointD Mapped(PointD logical) { return ToTarget()(logical); }
  /// The map that takes rectangles of a unit to the target.
  Affine MapOf(RegionUnit unit) { return unit == RegionUnit::device ? deviceToTarget : ToTarget(); }

  /// After a change of what is mapped, of the pen, of the brush, or of what both take colours from.
  void MappingChanged();
  void PenChanged() { pen_.reset(); }
  void BrushChanged() { brush_.reset(); }
  void ColorsChanged();
  void ClipChanged();
  void StateChanged();

  // ---- Drawing ----

  /// Null for a pen that draws nothing.
  const detail::StrokeStyle* PenStyle();
  const detail::Ink& PenInk();
  /// Null for a brush that paints nothing.
  const detail::Ink* BrushInk();
  detail::TernaryCode Code() const { return detail::CodeOf(state.rop); }

  void Fill(const Path& outline);
  /// Without an outline that would cover its edges: no background shows where areas meet.
  void FillAlone(const Path& outline);
  void Stroke(const Path& outline);
  /// Pixels of the device are larger than those of the target, and the pen draws: it is seen that
  /// lines run through their middles, and areas end there.
  bool FillsToLines();
  /// What is filled inside an outline that is drawn as well.
  Path AlongLines(const Path& outline);
  /// Adds to the open path, or fills and draws.
  void Shape(const Path& outline);
  void Line(const Path& outline);
  /// The path from the current position on, or a fresh one that starts there.
  Path StartedPath();
  /// Remembers that this part of the target would be painted, `reach` pixels more on every side.
  void Note(const RectD& box, double reach = 0);
  void Note(const Path& outline, double reach = 0);
  /// The same for what the pen draws along a box.
  void NoteStroke(const RectD& box, const detail::StrokeStyle& style);

  /// The rectangles as areas of the target: edges rounded, or slanted where the map turns.
  detail::ClipArea::Pointer AreaOf(std::span<const RectD> rects, RegionUnit unit);
  void CombineClip(const detail::ClipArea::Pointer& area, RegionMode mode);
  /// Clip areas, with what they cost.
  detail::ClipArea::Pointer Combined(const detail::ClipArea::Pointer& current,
                                     const detail::ClipArea::Pointer& other, RegionMode mode);
  detail::ClipArea::Pointer Moved(const detail::ClipArea& area, int dx, int dy);
  detail::ClipArea::Pointer AreaOfPath(const Path& outline, PolygonFill fill);
  /// A brush's ink, with what it costs.
  std::optional<detail::Ink> InkOf(const LogicalBrush& brush);
  const detail::ClipArea::Pointer& VisibleClip() const { return visibleClip_; }

  // ---- The parts ----

  const ReferenceDevice device;
  const Affine deviceToTarget;
  detail::DrawingWork work;
  detail::Painter painter;
  detail::FontFaces fonts;

  detail::DrawingState state;
  std::vector<detail::DrawingState> saved;
  /// Calls of SaveDC beyond what is kept.
  uint64_t savedBeyond = 0;

  bool isPathOpen = false;
  /// The next line of the open path begins a figure at the current position.
  bool startsFigure = true;
  Path path;
  /// What was to become the path's outline: it is drawn as what that pen covers.
  std::optional<detail::StrokeStyle> widened;

  std::optional<RectD> drawn;  ///< pixels of the target

  /// Fonts and maps that letters were drawn with of late.
  using LetterKey = std::tuple<const detail::FontFace*, double, double, double, double>;
  std::set<LetterKey> letterMaps;

 private:
  /// What making the area cost.
  void TakeArea(const detail::ClipArea& area);
  detail::ClipArea::Pointer RegionOf(std::span<const PixelRect> boxes);

  struct PenParts {
    std::optional<detail::StrokeStyle> style;
    detail::Ink ink;
  };
  const PenParts& Pen();

  std::optional<Affine> toTarget_;
  detail::ClipArea::Pointer visibleClip_;
  std::optional<PenParts> pen_;
  std::optional<std::optional<detail::Ink>> brush_;
  uint64_t styleSerial_ = 0;
  detail::SharedEdges filledEdges_;
};

namespace detail {

/// Lets the painter paint inside `clip` only, for as long as this lives.
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

/// Numbers that are none count as 0.
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

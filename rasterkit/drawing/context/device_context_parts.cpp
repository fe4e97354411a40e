#include <algorithm>

#include <rasterkit/drawing/context/device_context_parts.h>

namespace rasterkit {

using namespace detail;

namespace {

const LogicalPen& UsualPen() {
  static const LogicalPen pen;
  return pen;
}

const LogicalBrush& UsualBrush() {
  static const LogicalBrush brush;
  return brush;
}

}  // namespace

DeviceContext::Parts::Parts(Raster& target, const PixelRect& clip, const ReferenceDevice& d,
                            const PlaneAffine& toTarget)
    : device(d),
      deviceToTarget(toTarget.IsFinite() ? toTarget : PlaneAffine()),
      work(PixelsOf(ClipRect(clip, target.Width(), target.Height()))),
      painter(target, ClipRect(clip, target.Width(), target.Height()), work),
      state(d) {
  ClipChanged();
}

const PlaneAffine& DeviceContext::Parts::ToTarget() {
  if (!toTarget_) {
    const PlaneAffine map = state.ToDevice().Then(deviceToTarget);
    toTarget_ = map.IsFinite() ? map : PlaneAffine();
  }
  return *toTarget_;
}

void DeviceContext::Parts::MappingChanged() {
  toTarget_.reset();
  pen_.reset();
}

void DeviceContext::Parts::ColorsChanged() {
  pen_.reset();
  // Patterns may be large, and most do not depend on the text colors.
  const LogicalBrush& brush = state.brush ? *state.brush : UsualBrush();
  const bool takesColors =
      brush.kind == LogicalBrush::hatched || (brush.kind == LogicalBrush::pattern && brush.isMono);
  if (takesColors) brush_.reset();
}

void DeviceContext::Parts::ClipChanged() {
  const PixelRect& frame = painter.Frame();
  if (!state.metaClip) state.metaClip = ClipArea::OfRects({&frame, 1}, frame);
  visibleClip_ =
      state.clip ? Combined(state.metaClip, state.clip, RegionMode::intersection) : state.metaClip;
  painter.SetClip(visibleClip_);
}

void DeviceContext::Parts::CombineClip(const ClipArea::Pointer& area, RegionMode mode) {
  const auto number = static_cast<uint32_t>(mode);
  if (number < 1 || number > 5) return;
  const PixelRect& frame = painter.Frame();
  const ClipArea::Pointer current = state.clip ? state.clip : ClipArea::OfRects({&frame, 1}, frame);
  state.clip = Combined(current, area, mode);
  ClipChanged();
}

void DeviceContext::Parts::StateChanged() {
  MappingChanged();
  BrushChanged();
  ClipChanged();
}

const DeviceContext::Parts::PenParts& DeviceContext::Parts::Pen() {
  if (pen_) return *pen_;
  const LogicalPen& pen = state.pen ? *state.pen : UsualPen();
  PenParts parts;
  parts.ink.pixel = PixelOf(pen.color);
  bool draws = (pen.style & pen_style::kLine) != pen_style::kNull;
  if (pen.brush && (pen.style & pen_style::kGeometric)) {
    const auto ink = InkOf(*pen.brush);
    draws = draws && ink;
    if (ink) parts.ink = *ink;
  }
  if (draws) {
    parts.style = StrokeStyleOf(pen, {state.ToDevice(), deviceToTarget, state.miterLimit});
    parts.style->serial = ++styleSerial_;
    parts.style->fit.width = painter.Frame().right;
    parts.style->fit.height = painter.Frame().bottom;
  }
  return pen_.emplace(std::move(parts));
}

const StrokeStyle* DeviceContext::Parts::PenStyle() {
  const PenParts& pen = Pen();
  return pen.style ? &*pen.style : nullptr;
}

const Ink& DeviceContext::Parts::PenInk() {
  return Pen().ink;
}

const Ink* DeviceContext::Parts::BrushInk() {
  if (!brush_) {
    brush_ = InkOf(state.brush ? *state.brush : UsualBrush());
  }
  return *brush_ ? &**brush_ : nullptr;
}

void DeviceContext::Parts::Fill(const Path& outline) {
  const Ink* ink = BrushInk();
  if (!ink) return;
  AddBounds(outline);
  painter.Fill(outline, state.fill, *ink, Code());
}

void DeviceContext::Parts::FillAlone(const Path& outline) {
  Fill(outline);
  const Ink* ink = BrushInk();
  if (!ink || ink->tile || state.rop != Rop2::copyPen) return;
  const Path seams = filledEdges_.SharedWith(outline);
  if (!seams.Empty()) painter.Stroke(seams, StrokeStyle(), *ink, Code());
}

void DeviceContext::Parts::Stroke(const Path& outline) {
  const StrokeStyle* style = PenStyle();
  if (!style) return;
  if (const auto bounds = outline.Bounds()) AddStrokeBounds(*bounds, *style);
  if (style->gapsAreFilled && state.backMode == BackgroundMode::opaque) {
    StrokeStyle gaps = *style;
    gaps.dashes.clear();
    gaps.serial = 0;
    painter.Stroke(outline, gaps, {.pixel = PixelOf(state.backColor)}, Code());
  }
  painter.Stroke(outline, *style, PenInk(), Code());
}

bool DeviceContext::Parts::FillsToLines() {
  return PenStyle() && deviceToTarget.MeanScale() > 1 + 1e-9;
}

DeviceContext::Parts::Path DeviceContext::Parts::AlongLines(const Path& outline) {
  Path moved = outline;
  if (const StrokeStyle* style = FillsToLines() ? PenStyle() : nullptr) {
    moved.Transform(PlaneAffine::Translation(style->fit.toCenter.x, style->fit.toCenter.y));
  }
  return moved;
}

void DeviceContext::Parts::Shape(const Path& outline) {
  if (isPathOpen) {
    path.Append(outline);
    startsFigure = true;
    return;
  }
  if (!PenStyle()) {
    FillAlone(outline);
    return;
  }
  if (FillsToLines()) {
    Fill(AlongLines(outline));
  } else {
    Fill(outline);
  }
  Stroke(outline);
}

void DeviceContext::Parts::Line(const Path& outline) {
  if (isPathOpen) {
    path.Append(outline);
    return;
  }
  Stroke(outline);
}

DeviceContext::Parts::Path DeviceContext::Parts::StartedPath() {
  Path fresh;
  if (!isPathOpen || startsFigure) fresh.MoveTo(Mapped(state.position));
  startsFigure = false;
  return fresh;
}

void DeviceContext::Parts::AddBounds(const RectD& box, double reach) {
  const RectD r = Normalized(box);
  if (!drawn) {
    drawn = {r.left - reach, r.top - reach, r.right + reach, r.bottom + reach};
    return;
  }
  drawn->left = std::min(drawn->left, r.left - reach);
  drawn->top = std::min(drawn->top, r.top - reach);
  drawn->right = std::max(drawn->right, r.right + reach);
  drawn->bottom = std::max(drawn->bottom, r.bottom + reach);
}

void DeviceContext::Parts::AddStrokeBounds(const RectD& box, const StrokeStyle& style) {
  const PointD to = style.fit.toCenter;
  AddBounds({box.left + to.x, box.top + to.y, box.right + to.x, box.bottom + to.y},
            style.Overhang());
}

void DeviceContext::Parts::AddBounds(const Path& outline, double reach) {
  if (const auto bounds = outline.Bounds()) AddBounds(*bounds, reach);
}

void DeviceContext::Parts::ChargeArea(const ClipArea& area) {
  // An area of too many rectangles is stored as a mask.
  work.Charge(area.HasMask() ? PixelsOf(area.Bounds())
                             : static_cast<double>(area.Rects().size()) * kRegionRect);
}

ClipArea::Pointer DeviceContext::Parts::Combined(const ClipArea::Pointer& current,
                                                 const ClipArea::Pointer& other, RegionMode mode) {
  work.Charge(CombinationCost(*current, *other, mode));
  ClipArea::Pointer area = ClipArea::Combined(current, other, mode);
  ChargeArea(*area);
  return area;
}

ClipArea::Pointer DeviceContext::Parts::Moved(const ClipArea& area, int dx, int dy) {
  work.Charge(static_cast<double>(area.Rects().size()) * kRegionRect);
  if (area.HasMask()) work.Charge(PixelsOf(area.Bounds()));
  return area.Moved(dx, dy, painter.Frame());
}

ClipArea::Pointer DeviceContext::Parts::RegionOf(std::span<const PixelRect> boxes) {
  // Cost of mapping a rectangle, sorting it and joining it with its neighbors.
  constexpr double kStoredRect = 250;
  work.Charge(static_cast<double>(boxes.size()) * kStoredRect);
  RequireRegion(boxes, painter.Frame());
  ClipArea::Pointer area = ClipArea::OfRects(boxes, painter.Frame());
  ChargeArea(*area);
  return area;
}

ClipArea::Pointer DeviceContext::Parts::AreaOfPath(const Path& outline, PolygonFill fill) {
  const PixelRect& frame = painter.Frame();
  const auto bounds = outline.Bounds();
  if (bounds) {
    const PixelRect box = Intersection(CoveringBox(*bounds, 1), frame);
    work.Charge(OutlineCost(outline, box) + PixelsOf(box));
  }
  return ClipArea::OfPath(outline, fill, frame);
}

std::optional<Ink> DeviceContext::Parts::InkOf(const LogicalBrush& brush) {
  auto ink = detail::InkOf(brush, state, deviceToTarget);
  if (ink && ink->tile) work.Charge(static_cast<double>(ink->tile->pixels.size()) * kSourcePixel);
  return ink;
}

ClipArea::Pointer DeviceContext::Parts::AreaOf(std::span<const RectD> rects, RegionUnit unit) {
  const PlaneAffine map = MapOf(unit);
  if (map.KeepsAxes()) {
    std::vector<PixelRect> boxes;
    boxes.reserve(rects.size());
    for (const RectD& rect : rects) boxes.push_back(RoundedBox(MappedBounds(Finite(rect), map)));
    return RegionOf(boxes);
  }
  Path outline;
  for (const RectD& rect : rects) {
    Path one;
    one.AddRect(Normalized(Finite(rect)));
    one.Transform(map);
    outline.Append(one);
  }
  return AreaOfPath(outline, PolygonFill::winding);
}

}  // namespace rasterkit

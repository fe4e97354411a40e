#include <cmath>

#include <rasterkit/drawing/context/device_context_parts.h>
#include <rasterkit/drawing/context/flood_fill.h>

/// Pixels, regions and flood fills of a drawing context.
namespace rasterkit {

using namespace detail;

namespace {

/// Returns one pixel of the recording device on the target: at least one pixel.
PixelRect DevicePixel(const PlaneAffine& deviceToTarget, PointD at) {
  const double side = std::max(1.0, deviceToTarget.MeanScale());
  const int left = NearestEdge(at.x), top = NearestEdge(at.y);
  return {left, top, std::max(left + 1, NearestEdge(at.x + side)),
          std::max(top + 1, NearestEdge(at.y + side))};
}

/// Returns the pixels of `area` within this distance of its edge.
ClipArea::Pointer FrameOfArea(DeviceContext::Parts& parts, const ClipArea::Pointer& area,
                              int across, int down) {
  ClipArea::Pointer inner = area;
  for (const int dx : {-across, 0, across}) {
    for (const int dy : {-down, 0, down}) {
      if (dx == 0 && dy == 0) continue;
      inner = parts.Combined(inner, parts.Moved(*area, dx, dy), RegionMode::intersection);
    }
  }
  return parts.Combined(area, inner, RegionMode::difference);
}

void FillArea(DeviceContext::Parts& parts, const ClipArea::Pointer& area, const Ink& ink,
              TernaryCode code) {
  const ClipArea::Pointer visible =
      parts.Combined(parts.VisibleClip(), area, RegionMode::intersection);
  const NarrowedClip narrowed(parts, visible);
  parts.painter.FillBox(visible->Bounds(), ink, code);
}

void NoteRects(DeviceContext::Parts& parts, std::span<const RectD> rects, RegionUnit unit) {
  for (const RectD& rect : rects) parts.AddBounds(MappedBounds(Finite(rect), parts.MapOf(unit)));
}

}  // namespace

void DeviceContext::SetPixel(PointD at, TColor color) {
  const PointD target = parts_->Mapped(Finite(at));
  const PixelRect box = DevicePixel(parts_->deviceToTarget, target);
  parts_->AddBounds({target.x, target.y, target.x + 1, target.y + 1});
  parts_->painter.FillBox(box, {.pixel = PixelOf(color)}, kCopyBrush);
}

void DeviceContext::FillRgn(std::span<const RectD> region, RegionUnit unit,
                            const LogicalBrush& brush) {
  const auto ink = parts_->InkOf(brush);
  if (!ink) return;
  NoteRects(*parts_, region, unit);
  FillArea(*parts_, parts_->AreaOf(region, unit), *ink, parts_->Code());
}

void DeviceContext::FrameRgn(std::span<const RectD> region, RegionUnit unit,
                             const LogicalBrush& brush, PointD thickness) {
  const auto ink = parts_->InkOf(brush);
  if (!ink) return;
  const PlaneAffine map = parts_->MapOf(unit);
  const PointD t = Finite(thickness);
  const auto pixels = [](double length) { return std::max(1, NearestEdge(std::abs(length))); };
  const int across = pixels(t.x * std::hypot(map.m11, map.m12));
  const int down = pixels(t.y * std::hypot(map.m21, map.m22));
  NoteRects(*parts_, region, unit);
  const ClipArea::Pointer area = parts_->AreaOf(region, unit);
  FillArea(*parts_, FrameOfArea(*parts_, area, across, down), *ink, parts_->Code());
}

void DeviceContext::InvertRgn(std::span<const RectD> region, RegionUnit unit) {
  NoteRects(*parts_, region, unit);
  FillArea(*parts_, parts_->AreaOf(region, unit), {}, kInvertPicture);
}

void DeviceContext::PaintRgn(std::span<const RectD> region, RegionUnit unit) {
  const Ink* ink = parts_->BrushInk();
  if (!ink) return;
  NoteRects(*parts_, region, unit);
  FillArea(*parts_, parts_->AreaOf(region, unit), *ink, parts_->Code());
}

void DeviceContext::ExtFloodFill(PointD at, TColor color, FloodFill kind) {
  const Ink* ink = parts_->BrushInk();
  const PointD target = parts_->Mapped(Finite(at));
  if (!ink) return;
  const auto mask = FloodMask(
      parts_->painter, {PixelNumber(std::floor(target.x)), PixelNumber(std::floor(target.y))},
      PixelOf(color), kind);
  if (mask) parts_->painter.FillMask(*mask, *ink, parts_->Code());
}

}  // namespace rasterkit

#include <rasterkit/drawing/context/device_context_parts.h>

/// The setters of a drawing context's modes and of its mapping.
namespace rasterkit {

using namespace detail;

void DeviceContext::SetMapMode(MapMode mode) {
  parts_->state.page.SetMode(mode);
  parts_->MappingChanged();
}

void DeviceContext::SetWindowOrg(PointD origin) {
  parts_->state.page.windowOrg = Finite(origin);
  parts_->MappingChanged();
}

void DeviceContext::SetWindowExt(PointD extent) {
  parts_->state.page.SetWindowExt(extent);
  parts_->MappingChanged();
}

void DeviceContext::SetViewportOrg(PointD origin) {
  parts_->state.page.viewportOrg = Finite(origin);
  parts_->MappingChanged();
}

void DeviceContext::SetViewportExt(PointD extent) {
  parts_->state.page.SetViewportExt(extent);
  parts_->MappingChanged();
}

void DeviceContext::OffsetWindowOrg(PointD by) {
  const PointD origin = parts_->state.page.windowOrg;
  SetWindowOrg({origin.x + by.x, origin.y + by.y});
}

void DeviceContext::OffsetViewportOrg(PointD by) {
  const PointD origin = parts_->state.page.viewportOrg;
  SetViewportOrg({origin.x + by.x, origin.y + by.y});
}

void DeviceContext::ScaleWindowExt(PointD numerator, PointD denominator) {
  parts_->state.page.ScaleWindowExt(numerator, denominator);
  parts_->MappingChanged();
}

void DeviceContext::ScaleViewportExt(PointD numerator, PointD denominator) {
  parts_->state.page.ScaleViewportExt(numerator, denominator);
  parts_->MappingChanged();
}

void DeviceContext::SetWorldTransform(const PlaneAffine& matrix) {
  ModifyWorldTransform(matrix, WorldChange::set);
}

void DeviceContext::ModifyWorldTransform(const PlaneAffine& matrix, WorldChange change) {
  PlaneAffine& world = parts_->state.world;
  PlaneAffine changed = world;
  switch (change) {
    case WorldChange::identity:
      changed = PlaneAffine();
      break;
    case WorldChange::left:
      changed = matrix.Then(world);
      break;
    case WorldChange::right:
      changed = world.Then(matrix);
      break;
    case WorldChange::set:
      changed = matrix;
      break;
  }
  // A singular matrix is ignored, as it would map everything onto one line.
  if (!changed.IsFinite() || changed.Determinant() == 0) return;
  world = changed;
  parts_->MappingChanged();
}

void DeviceContext::SetGraphicsMode(GraphicsMode mode) {
  parts_->state.graphicsMode = mode;
}

void DeviceContext::SetLayout(uint32_t layout) {
  parts_->state.page.isMirrored = (layout & kLayoutRightToLeft) != 0;
  parts_->MappingChanged();
}

void DeviceContext::SetTextColor(TColor color) {
  parts_->state.textColor = color;
  parts_->ColorsChanged();
}

void DeviceContext::SetBkColor(TColor color) {
  parts_->state.backColor = color;
  parts_->ColorsChanged();
}

void DeviceContext::SetBkMode(BackgroundMode mode) {
  if (mode != BackgroundMode::transparent && mode != BackgroundMode::opaque) return;
  parts_->state.backMode = mode;
  parts_->ColorsChanged();
}

void DeviceContext::SetRop2(Rop2 rop) {
  const auto number = static_cast<uint32_t>(rop);
  if (number >= 1 && number <= 16) parts_->state.rop = rop;
}

void DeviceContext::SetPolyFillMode(PolygonFill fill) {
  if (fill == PolygonFill::alternate || fill == PolygonFill::winding) parts_->state.fill = fill;
}

void DeviceContext::SetStretchBltMode(StretchMode mode) {
  parts_->state.stretch = mode;
}

void DeviceContext::SetArcDirection(ArcDirection direction) {
  if (direction == ArcDirection::clockwise || direction == ArcDirection::counterclockwise) {
    parts_->state.arcs = direction;
  }
}

void DeviceContext::SetMiterLimit(double limit) {
  if (!(limit >= 1)) return;
  parts_->state.miterLimit = limit;
  parts_->PenChanged();
}

void DeviceContext::SetBrushOrg(PointD origin) {
  parts_->state.brushOrigin = Finite(origin);
  parts_->PenChanged();
  parts_->BrushChanged();
}

void DeviceContext::SetTextAlign(uint32_t align) {
  parts_->state.textAlign = align;
}

void DeviceContext::SetTextCharacterExtra(double extra) {
  parts_->state.textExtra = Finite(extra);
}

void DeviceContext::SetTextJustification(double extra, int32_t breaks) {
  parts_->state.breakExtra = Finite(extra);
  parts_->state.breaks = breaks;
}

}  // namespace rasterkit

#include <cmath>

#include <rasterkit/drawing/ink/page_mapping.h>

namespace rasterkit::detail {
namespace {

double OrUsual(double value, double usual) {
  return std::isfinite(value) && value > 0 ? value : usual;
}

bool IsExtent(PointD p) {
  return p.x != 0 && p.y != 0 && std::isfinite(p.x) && std::isfinite(p.y);
}

}  // namespace

PageMapping::PageMapping(const ReferenceDevice& device) {
  const ReferenceDevice usual;
  device_ = {OrUsual(device.widthPx, usual.widthPx), OrUsual(device.heightPx, usual.heightPx),
             OrUsual(device.widthMm, usual.widthMm), OrUsual(device.heightMm, usual.heightMm)};
}

void PageMapping::SetUnitsPerMm(double units) {
  windowExt_ = {device_.widthMm * units, device_.heightMm * units};
  viewportExt_ = {device_.widthPx, -device_.heightPx};
}

void PageMapping::SetMode(MapMode mode) {
  constexpr double kMmPerInch = 25.4;
  switch (mode) {
    case MapMode::text:
      windowExt_ = viewportExt_ = {1, 1};
      break;
    case MapMode::loMetric:
    case MapMode::isotropic:
      SetUnitsPerMm(10);
      break;
    case MapMode::hiMetric:
      SetUnitsPerMm(100);
      break;
    case MapMode::loEnglish:
      SetUnitsPerMm(100 / kMmPerInch);
      break;
    case MapMode::hiEnglish:
      SetUnitsPerMm(1000 / kMmPerInch);
      break;
    case MapMode::twips:
      SetUnitsPerMm(1440 / kMmPerInch);
      break;
    case MapMode::anisotropic:
      break;
    default:
      return;
  }
  mode_ = mode;
}

void PageMapping::SetWindowExt(PointD extent) {
  if (!TakesExtents() || !IsExtent(extent)) return;
  windowExt_ = extent;
  KeepSquare();
}

void PageMapping::SetViewportExt(PointD extent) {
  if (!TakesExtents() || !IsExtent(extent)) return;
  viewportExt_ = extent;
  KeepSquare();
}

void PageMapping::ScaleWindowExt(PointD numerator, PointD denominator) {
  if (!IsExtent(numerator) || !IsExtent(denominator)) return;
  SetWindowExt(
      {windowExt_.x * numerator.x / denominator.x, windowExt_.y * numerator.y / denominator.y});
}

void PageMapping::ScaleViewportExt(PointD numerator, PointD denominator) {
  if (!IsExtent(numerator) || !IsExtent(denominator)) return;
  SetViewportExt(
      {viewportExt_.x * numerator.x / denominator.x, viewportExt_.y * numerator.y / denominator.y});
}

/// Makes isotropic units square in millimeters: shrinks the viewport in the direction in which a
/// unit would be longer.
void PageMapping::KeepSquare() {
  if (mode_ != MapMode::isotropic) return;
  const double across = std::abs(viewportExt_.x / windowExt_.x) * device_.widthMm / device_.widthPx;
  const double down = std::abs(viewportExt_.y / windowExt_.y) * device_.heightMm / device_.heightPx;
  if (across > down) {
    viewportExt_.x *= down / across;
  } else {
    viewportExt_.y *= across / down;
  }
}

PlaneAffine PageMapping::ToDevice() const {
  const double sx = viewportExt_.x / windowExt_.x, sy = viewportExt_.y / windowExt_.y;
  const PlaneAffine plain{
      sx, 0, 0, sy, viewportOrg.x - windowOrg.x * sx, viewportOrg.y - windowOrg.y * sy};
  if (!isMirrored) return plain;
  return plain.Then({-1, 0, 0, 1, device_.widthPx, 0});
}

}  // namespace rasterkit::detail

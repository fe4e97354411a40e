#include <algorithm>
#include <cmath>

#include <rasterkit/drawing/context/bitmap_alpha.h>
#include <rasterkit/drawing/context/device_context_parts.h>
#include <rasterkit/drawing/context/placed_bitmap.h>

/// Bitmaps of a drawing context.
namespace rasterkit {

using namespace detail;

namespace {

RectD BoundsOf(const BitmapCorners& corners) {
  const PointD a = corners.topLeft, b = corners.topRight, c = corners.bottomLeft;
  const PointD d{b.x + c.x - a.x, b.y + c.y - a.y};
  return {std::min({a.x, b.x, c.x, d.x}), std::min({a.y, b.y, c.y, d.y}),
          std::max({a.x, b.x, c.x, d.x}), std::max({a.y, b.y, c.y, d.y})};
}

BitmapCorners CornersOf(const RectD& rect, const PlaneAffine& map) {
  return {map({rect.left, rect.top}), map({rect.right, rect.top}), map({rect.left, rect.bottom})};
}

/// Charges the visible pixels and all pixels of the bitmap.
std::optional<PlacedBitmap> PlaceCounted(DeviceContext::Parts& parts, const BitmapPart& source,
                                         const BitmapCorners& corners, Sampling sampling,
                                         bool hasAlpha) {
  const PixelRect& visible = parts.painter.Clip().Bounds();
  parts.work.Charge(ReadingCost(source.bitmap) +
                    PixelsOf(Intersection(visible, CoveringBox(BoundsOf(corners), 1))) *
                        kSampledPixel);
  return PlaceBitmap(source, corners, visible, sampling, hasAlpha);
}

/// Returns how to scale a bitmap: bitwise operations need its original pixels.
Sampling SamplingFor(TernaryCode code, const DrawingState& state) {
  if (code != kCopySource) return Sampling::nearest;
  return state.stretch == StretchMode::halftone ? Sampling::smooth : Sampling::meanOrPlain;
}

void Put(DeviceContext::Parts& parts, const PlacedBitmap& placed, const Ink& ink,
         TernaryCode code) {
  parts.painter.PutSource(placed.box, placed.pixels, ink, code,
                          placed.shape ? &*placed.shape : nullptr);
}

/// Returns the brush as an operand; the null brush counts as white.
Ink OperandBrush(DeviceContext::Parts& parts) {
  const Ink* ink = parts.BrushInk();
  return ink ? *ink : Ink{.pixel = PixelOf(clWhite)};
}

std::optional<PlacedBitmap> Place(DeviceContext::Parts& parts, const RectD& dest,
                                  const BitmapPart& source, Sampling sampling,
                                  bool hasAlpha = false) {
  const RectD rect = Finite(dest);
  parts.AddBounds(MappedBounds(rect, parts.ToTarget()));
  return PlaceCounted(parts, source, CornersOf(rect, parts.ToTarget()), sampling, hasAlpha);
}

/// Transforms the mask like the source.
std::optional<PlacedBitmap> PlaceMask(DeviceContext::Parts& parts, const BitmapCorners& corners,
                                      const RectD& sourcePart, const Raster& mask,
                                      PixelPoint origin) {
  const Raster bits = MaskBits(mask);
  const double left = origin.x, top = origin.y;
  const RectD part{left, top, left + sourcePart.Width(), top + sourcePart.Height()};
  return PlaceCounted(parts, {bits, part}, corners, Sampling::nearest, false);
}

}  // namespace

void DeviceContext::PatBlt(const RectD& dest, uint32_t rop) {
  Parts& parts = *parts_;
  const TernaryCode code = CodeOf(rop);
  if (NeedsBrush(code) && !parts.BrushInk()) return;
  Parts::Path outline;
  outline.AddRect(Normalized(Finite(dest)));
  outline.Transform(parts.ToTarget());
  parts.AddBounds(outline);
  parts.painter.Fill(outline, PolygonFill::winding, OperandBrush(parts), code);
}

void DeviceContext::StretchBlt(const RectD& dest, const BitmapPart& source, uint32_t rop) {
  const TernaryCode code = CodeOf(rop);
  if (!NeedsSource(code)) {
    PatBlt(dest, rop);
    return;
  }
  const auto placed = Place(*parts_, dest, source, SamplingFor(code, parts_->state));
  if (placed) Put(*parts_, *placed, OperandBrush(*parts_), code);
}

void DeviceContext::SetDIBitsToDevice(PointD topLeft, const BitmapPart& source) {
  Parts& parts = *parts_;
  const PointD at = DevicePoint(topLeft);
  const RectD& part = source.part;
  const RectD dest{at.x, at.y, at.x + part.Width(), at.y + part.Height()};
  parts.AddBounds(MappedBounds(dest, parts.deviceToTarget));
  const auto placed = PlaceCounted(parts, source, CornersOf(dest, parts.deviceToTarget),
                                   SamplingFor(kCopySource, parts.state), false);
  if (placed) Put(parts, *placed, {}, kCopySource);
}

void DeviceContext::MaskBlt(const RectD& dest, const BitmapPart& source, const Raster& mask,
                            PixelPoint maskOrigin, uint32_t rop) {
  Parts& parts = *parts_;
  const auto placed = Place(parts, dest, source, Sampling::nearest);
  if (!placed) return;
  const auto shape =
      PlaceMask(parts, CornersOf(Finite(dest), parts.ToTarget()), source.part, mask, maskOrigin);
  const Ink brush = OperandBrush(parts);
  PlacedBitmap front{placed->box, placed->pixels.Clone(), std::nullopt};
  PlacedBitmap back{placed->box, placed->pixels.Clone(), std::nullopt};
  SplitByMask(front.pixels, back.pixels, shape ? &shape->pixels : nullptr);
  Put(parts, front, brush, CodeOf(rop));
  Put(parts, back, brush, static_cast<TernaryCode>(rop >> 24));
}

void DeviceContext::PlgBlt(const std::array<PointD, 3>& corners, const BitmapPart& source,
                           const Raster* mask, PixelPoint maskOrigin) {
  Parts& parts = *parts_;
  const BitmapCorners to{parts.Mapped(Finite(corners[0])), parts.Mapped(Finite(corners[1])),
                         parts.Mapped(Finite(corners[2]))};
  for (const PointD& p : {to.topLeft, to.topRight, to.bottomLeft}) {
    parts.AddBounds({p.x, p.y, p.x, p.y});
  }
  auto placed = PlaceCounted(
      parts, source, to, mask ? Sampling::nearest : SamplingFor(kCopySource, parts.state), false);
  if (!placed) return;
  if (mask) {
    const auto shape = PlaceMask(parts, to, source.part, *mask, maskOrigin);
    Raster unused = placed->pixels.Clone();
    SplitByMask(placed->pixels, unused, shape ? &shape->pixels : nullptr);
  }
  Put(parts, *placed, {}, kCopySource);
}

void DeviceContext::AlphaBlend(const RectD& dest, const BitmapPart& source, uint8_t constantAlpha,
                               bool hasAlpha) {
  Parts& parts = *parts_;
  const bool isAlpha = hasAlpha && StoredBitsPerPixel(source.bitmap.Format()) == 32;
  const Raster straight = isAlpha ? WithStraightAlpha(source.bitmap) : Raster();
  auto placed = Place(parts, dest, {isAlpha ? straight : source.bitmap, source.part},
                      SamplingFor(kCopySource, parts.state), isAlpha);
  if (!placed) return;
  ScaleAlpha(placed->pixels, constantAlpha);
  Put(parts, *placed, {}, kCopySource);
}

void DeviceContext::TransparentBlt(const RectD& dest, const BitmapPart& source, TColor key) {
  auto placed = Place(*parts_, dest, source, Sampling::nearest);
  if (!placed) return;
  DropColor(placed->pixels, PixelOf(key));
  Put(*parts_, *placed, {}, kCopySource);
}

}  // namespace rasterkit

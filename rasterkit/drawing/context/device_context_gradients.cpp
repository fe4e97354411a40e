#include <algorithm>
#include <cmath>

#include <rasterkit/drawing/context/device_context_parts.h>

/// Gradients of a drawing context.
namespace rasterkit {

using namespace detail;

namespace {

struct Shade {
  double red = 0, green = 0, blue = 0;

  Shade Plus(const Shade& other, double factor) const {
    return {red + other.red * factor, green + other.green * factor, blue + other.blue * factor};
  }
  RGBArec Pixel() const {
    const auto byte = [](double value) {
      return static_cast<uint8_t>(std::clamp(value, 0.0, 65535.0) / 256);
    };
    return {byte(blue), byte(green), byte(red), 255};
  }
};

Shade ShadeOf(const GradientVertex& vertex) {
  return {static_cast<double>(vertex.red), static_cast<double>(vertex.green),
          static_cast<double>(vertex.blue)};
}

/// Paints the visible box with `color(center)` of each pixel; alpha 0 leaves the pixel unchanged.
template <class Color>
void Shaded(DeviceContext::Parts& parts, const PixelRect& box, Color color) {
  if (IsEmpty(box)) return;
  parts.work.Charge(PixelsOf(box) * kSampledPixel);
  Raster pixels(pf32bit, box.right - box.left, box.bottom - box.top);
  for (int y = box.top; y < box.bottom; ++y) {
    auto* row = reinterpret_cast<RGBArec*>(pixels.Row(y - box.top));
    for (int x = box.left; x < box.right; ++x) {
      row[x - box.left] = color(PointD{x + 0.5, y + 0.5});
    }
  }
  parts.painter.PutSource(box, pixels, {}, kCopySource);
}

/// Paints colors that change in one direction only, which need to be computed for one line only.
template <class Color>
void ShadedInLines(DeviceContext::Parts& parts, const PixelRect& box, bool isAcross, Color color) {
  if (IsEmpty(box)) return;
  parts.work.Charge(PixelsOf(box) * kPlainPixel);
  const int width = box.right - box.left;
  Raster pixels(pf32bit, width, box.bottom - box.top);
  const auto row = [&](int y) { return reinterpret_cast<RGBArec*>(pixels.Row(y)); };
  for (int y = 0; y < pixels.Height(); ++y) {
    if (!isAcross) {
      std::fill_n(row(y), width, color(PointD{box.left + 0.5, box.top + y + 0.5}));
    } else if (y > 0) {
      std::copy_n(row(0), width, row(y));
    } else {
      for (int x = 0; x < width; ++x) row(0)[x] = color(PointD{box.left + x + 0.5, box.top + 0.5});
    }
  }
  parts.painter.PutSource(box, pixels, {}, kCopySource);
}

void FillRect(DeviceContext::Parts& parts, const GradientVertex& first,
              const GradientVertex& second, bool isVertical) {
  const PlaneAffine& map = parts.ToTarget();
  const PointD a = Finite(first.point), b = Finite(second.point);
  const auto back = map.Inverse();
  const double length = isVertical ? b.y - a.y : b.x - a.x;
  const RectD rect = Normalized({a.x, a.y, b.x, b.y});
  if (!back || rect.Width() == 0 || rect.Height() == 0) return;
  const RectD bounds = MappedBounds(rect, map);
  parts.AddBounds(bounds);
  const Shade from = ShadeOf(first), to = ShadeOf(second);
  const auto colorAt = [&](PointD p) {
    const double part = std::clamp((isVertical ? p.y - a.y : p.x - a.x) / length, 0.0, 1.0);
    return from.Plus(to, part).Plus(from, -part).Pixel();
  };
  const PixelRect& visible = parts.painter.Clip().Bounds();
  if (map.KeepsAxes()) {
    const PixelRect box = Intersection(SeenBox(bounds), visible);
    const bool isTurned = map.m12 != 0;
    ShadedInLines(parts, box, isVertical == isTurned,
                  [&](PointD center) { return colorAt((*back)(center)); });
    return;
  }
  const PixelRect box = Intersection(CoveringBox(bounds, 0), visible);
  Shaded(parts, box, [&](PointD center) {
    const PointD p = (*back)(center);
    const bool isInside =
        p.x >= rect.left && p.x < rect.right && p.y >= rect.top && p.y < rect.bottom;
    return isInside ? colorAt(p) : RGBArec{};
  });
}

void FillTriangle(DeviceContext::Parts& parts, const GradientVertex& a, const GradientVertex& b,
                  const GradientVertex& c) {
  const PointD o = parts.Mapped(Finite(a.point)), p = parts.Mapped(Finite(b.point)),
               q = parts.Mapped(Finite(c.point));
  const PlaneAffine map{p.x - o.x, p.y - o.y, q.x - o.x, q.y - o.y, o.x, o.y};
  const auto back = map.Inverse();
  if (!back) return;
  const RectD bounds{std::min({o.x, p.x, q.x}), std::min({o.y, p.y, q.y}),
                     std::max({o.x, p.x, q.x}), std::max({o.y, p.y, q.y})};
  parts.AddBounds(bounds);
  const Shade first = ShadeOf(a), second = ShadeOf(b), third = ShadeOf(c);
  const PixelRect box = Intersection(CoveringBox(bounds, 0), parts.painter.Clip().Bounds());
  // No antialiasing: soft edges would leave seams between adjacent triangles.
  Shaded(parts, box, [&](PointD center) {
    const PointD w = (*back)(center);
    const double rest = 1 - w.x - w.y;
    if (w.x < 0 || w.y < 0 || rest < 0) return RGBArec{};
    return Shade{}.Plus(first, rest).Plus(second, w.x).Plus(third, w.y).Pixel();
  });
}

}  // namespace

void DeviceContext::GradientRects(std::span<const GradientVertex> vertices,
                                  std::span<const std::pair<uint32_t, uint32_t>> rects,
                                  bool isVertical) {
  parts_->work.Charge(static_cast<double>(rects.size()) * kShape);
  for (const auto& [first, second] : rects) {
    if (first >= vertices.size() || second >= vertices.size()) continue;
    FillRect(*parts_, vertices[first], vertices[second], isVertical);
  }
}

void DeviceContext::GradientTriangles(std::span<const GradientVertex> vertices,
                                      std::span<const std::array<uint32_t, 3>> triangles) {
  parts_->work.Charge(static_cast<double>(triangles.size()) * kShape);
  for (const auto& [a, b, c] : triangles) {
    if (std::max({a, b, c}) >= vertices.size()) continue;
    FillTriangle(*parts_, vertices[a], vertices[b], vertices[c]);
  }
}

}  // namespace rasterkit

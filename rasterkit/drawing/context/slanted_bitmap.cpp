#include <algorithm>
#include <cmath>

#include <rasterkit/drawing/context/slanted_bitmap.h>
#include <rasterkit/drawing/ink/drawing_path.h>
#include <rasterkit/drawing/ink/pixel_boxes.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/raster/stretch/halftone.h>

namespace rasterkit::detail {
namespace {

/// Returns the map from the unit square to the target.
PlaneAffine SquareMap(const BitmapCorners& corners) {
  const PointD o = corners.topLeft;
  return {corners.topRight.x - o.x,
          corners.topRight.y - o.y,
          corners.bottomLeft.x - o.x,
          corners.bottomLeft.y - o.y,
          o.x,
          o.y};
}

DrawingPath Outline(const PlaneAffine& map) {
  DrawingPath outline;
  outline.AddRect({0, 0, 1, 1});
  outline.Transform(map);
  return outline;
}

/// Samples a 32-bit bitmap at fractional positions.
class Sampler {
 public:
  Sampler(const Raster& bitmap, bool isSmooth, bool hasAlpha)
      : bitmap_(bitmap), isSmooth_(isSmooth), hasAlpha_(hasAlpha) {}

  RGBArec At(PointD p) const { return isSmooth_ ? Between(p) : Nearest(p); }

 private:
  RGBArec Pixel(int x, int y) const {
    RGBArec pixel = reinterpret_cast<const RGBArec*>(bitmap_.Row(y))[x];
    if (!hasAlpha_) pixel.a = 255;
    return pixel;
  }
  /// Returns a transparent pixel outside the bitmap, but tolerates rounding errors at its edge.
  RGBArec Nearest(PointD p) const {
    const double slack = 0.5;
    const bool isInside = p.x >= -slack && p.y >= -slack && p.x <= bitmap_.Width() + slack &&
                          p.y <= bitmap_.Height() + slack;
    if (!isInside) return {};
    return Pixel(std::clamp(static_cast<int>(std::floor(p.x)), 0, bitmap_.Width() - 1),
                 std::clamp(static_cast<int>(std::floor(p.y)), 0, bitmap_.Height() - 1));
  }
  /// Interpolates between the centers of four pixels; colors are weighted by alpha.
  RGBArec Between(PointD p) const {
    if (Nearest(p).a == 0 && !hasAlpha_) return {};
    const double x = std::clamp(p.x - 0.5, 0.0, bitmap_.Width() - 1.0);
    const double y = std::clamp(p.y - 0.5, 0.0, bitmap_.Height() - 1.0);
    const int left = static_cast<int>(x), top = static_cast<int>(y);
    const int right = std::min(left + 1, bitmap_.Width() - 1);
    const int bottom = std::min(top + 1, bitmap_.Height() - 1);
    const double u = x - left, v = y - top;
    const RGBArec pixels[] = {Pixel(left, top), Pixel(right, top), Pixel(left, bottom),
                              Pixel(right, bottom)};
    const double weights[] = {(1 - u) * (1 - v), u * (1 - v), (1 - u) * v, u * v};
    double b = 0, g = 0, r = 0, a = 0;
    for (int i = 0; i < 4; ++i) {
      const double weight = weights[i] * pixels[i].a;
      b += weight * pixels[i].b;
      g += weight * pixels[i].g;
      r += weight * pixels[i].r;
      a += weight;
    }
    if (!(a > 0)) return {};
    const auto byte = [](double value) { return static_cast<uint8_t>(std::floor(value + 0.5)); };
    return {byte(b / a), byte(g / a), byte(r / a), byte(a)};
  }

  const Raster& bitmap_;
  const bool isSmooth_, hasAlpha_;
};

Raster Opaque32(const Raster& bitmap, bool hasAlpha) {
  Raster copy = ConvertRaster(bitmap, pf32bit);
  if (hasAlpha) return copy;
  for (int y = 0; y < copy.Height(); ++y) {
    auto* row = reinterpret_cast<RGBArec*>(copy.Row(y));
    for (int x = 0; x < copy.Width(); ++x) row[x].a = 255;
  }
  return copy;
}

/// A bitmap that is shrunk a lot is reduced first, so that all of its pixels contribute.
struct Shrunk {
  Raster bitmap;
  double across = 1, down = 1;  ///< new size / old size
};

Shrunk ShrinkFor(Raster bitmap, const RectD& part, const PlaneAffine& square) {
  const auto target = [](double length, double pixels, int size) {
    const double factor = pixels > 0 ? length / pixels : 1;
    return factor < 0.75 ? std::max(1, static_cast<int>(std::ceil(size * factor))) : size;
  };
  const int width =
      target(std::hypot(square.m11, square.m12), std::abs(part.Width()), bitmap.Width());
  const int height =
      target(std::hypot(square.m21, square.m22), std::abs(part.Height()), bitmap.Height());
  if (width == bitmap.Width() && height == bitmap.Height()) return {std::move(bitmap)};
  Raster small(pf32bit, width, height);
  CopyHalftone(small, {0, 0, width, height}, bitmap);
  return {std::move(small), static_cast<double>(width) / bitmap.Width(),
          static_cast<double>(height) / bitmap.Height()};
}

}  // namespace

std::optional<PlacedBitmap> PlaceSlanted(const BitmapPart& source, const BitmapCorners& corners,
                                         const PixelRect& visible, Sampling sampling,
                                         bool hasAlpha) {
  const PlaneAffine square = SquareMap(corners);
  const auto toSquare = square.Inverse();
  const DrawingPath outline = Outline(square);
  const PixelRect box = Intersection(visible, CoveringBox(*outline.Bounds(), 0));
  if (!toSquare || IsEmpty(box)) return std::nullopt;

  Shrunk shrunk{Opaque32(source.bitmap, hasAlpha)};
  if (sampling != Sampling::nearest) {
    shrunk = ShrinkFor(std::move(shrunk.bitmap), source.part, square);
  }
  const RectD& part = source.part;
  const PlaneAffine toSource =
      toSquare->Then(PlaneAffine{part.Width(), 0, 0, part.Height(), part.left, part.top})
          .Then(PlaneAffine::Scaling(shrunk.across, shrunk.down));
  const bool wasShrunk = shrunk.across < 1 || shrunk.down < 1;
  const Sampler sampler(shrunk.bitmap, wasShrunk || sampling == Sampling::smooth, hasAlpha);

  PlacedBitmap placed{box, Raster(pf32bit, box.right - box.left, box.bottom - box.top),
                      CoverageMask(box)};
  for (int y = box.top; y < box.bottom; ++y) {
    auto* row = reinterpret_cast<RGBArec*>(placed.pixels.Row(y - box.top));
    for (int x = box.left; x < box.right; ++x) {
      row[x - box.left] = sampler.At(toSource(PointD{x + 0.5, y + 0.5}));
    }
  }
  placed.shape->Draw([&](cairo_t* cairo) {
    outline.EmitTo(cairo);
    cairo_fill(cairo);
  });
  return placed;
}

}  // namespace rasterkit::detail

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include <fmt/format.h>

#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/placement/map_window.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

constexpr double kWhole = 100, kMillimetersPerInch = 25.4;

/// Throws RangeError, with the picture's file, in place of the errors of `compute`.
template <class Compute>
auto ForPicture(const Picture& picture, const Compute& compute) {
  try {
    return compute();
  } catch (Error& error) {
    error.AttachFile(picture.SourceFile());
    throw;
  }
}

Resolution ResolutionOf(const Picture& picture) {
  const Resolution dpi = picture.GetMetadata().resolution;
  if (!dpi.IsKnown()) {
    throw RangeError("the picture states no resolution, which millimeters need");
  }
  return dpi;
}

/// From a length along a side to pixels.
double PixelsOf(double length, LengthUnit unit, int size, double dpi) {
  switch (unit) {
    case LengthUnit::percent:
      return length * size / kWhole;
    case LengthUnit::millimeters:
      return length * dpi / kMillimetersPerInch;
    default:
      return length;
  }
}

void RequireFinite(std::initializer_list<double> numbers) {
  for (const double number : numbers) {
    if (!std::isfinite(number)) throw RangeError("a coordinate is no finite number");
  }
}

struct PixelEdges {
  PixelSpan across, down;
};

PixelEdges EdgesOf(const RecipeCrop& crop, const Picture& picture) {
  if (crop.unit == LengthUnit::map) {
    const auto& affine = picture.GetPlacement().affine;
    if (!affine) throw RangeError("the picture has no position on a map");
    if (!(crop.left < crop.right && crop.bottom < crop.top)) {
      throw RangeError(
          "the rectangle on the map has no area: left is less than right, and bottom "
          "less than top");
    }
    const MapSpans spans = SpansOfMap({crop.left, crop.bottom}, {crop.right, crop.top}, *affine);
    return {spans.columns, spans.rows};
  }
  if (!(crop.left < crop.right && crop.top < crop.bottom)) {
    throw RangeError(
        "the rectangle has no area: left is less than right, and top less than bottom");
  }
  Resolution dpi;
  if (crop.unit == LengthUnit::millimeters) dpi = ResolutionOf(picture);
  const auto across = [&](double x) { return PixelsOf(x, crop.unit, picture.Width(), dpi.x); };
  const auto down = [&](double y) { return PixelsOf(y, crop.unit, picture.Height(), dpi.y); };
  return {{across(crop.left), across(crop.right)}, {down(crop.top), down(crop.bottom)}};
}

/// The whole pixels of a span; nothing if they are not inside `size` pixels.
std::optional<PixelRun> PixelsAlong(PixelSpan span, int size, Outside outside) {
  if (outside == Outside::clip) {
    span = {std::max(span.first, 0.0), std::min(span.last, static_cast<double>(size))};
    if (!(span.first < span.last)) return std::nullopt;
  }
  return WholePixelsOf(span, size);
}

int SideOf(double exact) {
  const double rounded = std::max(1.0, std::nearbyint(exact));
  if (!(rounded <= std::numeric_limits<int>::max())) {
    throw RangeError(fmt::format("a picture cannot have {:.10g} pixels along a side", exact));
  }
  return static_cast<int>(rounded);
}

struct Proportion {
  double across = 1, down = 1;
};

/// Of the pixels of the result.
Proportion ProportionFor(const RecipeResize& resize, const Picture& picture) {
  const Proportion ofPixels{static_cast<double>(picture.Width()),
                            static_cast<double>(picture.Height())};
  const Resolution dpi = picture.GetMetadata().resolution;
  const bool becomesSquare =
      resize.unit == LengthUnit::millimeters && resize.dpi > 0 && dpi.IsKnown();
  if (!becomesSquare) return ofPixels;
  return {ofPixels.across * dpi.y, ofPixels.down * dpi.x};
}

}  // namespace

CropStep PixelsOf(const RecipeCrop& crop, const Picture& picture) {
  return ForPicture(picture, [&] {
    RequireFinite({crop.left, crop.top, crop.right, crop.bottom});
    const int width = picture.Width(), height = picture.Height();
    const PixelEdges edges = EdgesOf(crop, picture);
    const auto across = PixelsAlong(edges.across, width, crop.outside);
    const auto down = PixelsAlong(edges.down, height, crop.outside);
    if (!across || !down) {
      throw RangeError(fmt::format(
          "the rectangle is not inside the picture: it goes from column {:.10g} to {:.10g} and "
          "from row {:.10g} to {:.10g} of {} x {} pixels",
          edges.across.first, edges.across.last, edges.down.first, edges.down.last, width, height));
    }
    return CropStep{across->first, down->first, across->count, down->count};
  });
}

std::optional<CropStep> PixelsInside(const RecipeCrop& crop, const Picture& picture) {
  return ForPicture(picture, [&]() -> std::optional<CropStep> {
    RequireFinite({crop.left, crop.top, crop.right, crop.bottom});
    const PixelEdges edges = EdgesOf(crop, picture);
    const auto across = PixelsAlong(edges.across, picture.Width(), Outside::clip);
    const auto down = PixelsAlong(edges.down, picture.Height(), Outside::clip);
    if (!across || !down) return std::nullopt;
    return CropStep{across->first, down->first, across->count, down->count};
  });
}

ResizeStep PixelsOf(const RecipeResize& resize, const Picture& picture) {
  return ForPicture(picture, [&] {
    RequireFinite({resize.width, resize.height, resize.dpi});
    if (resize.width < 0 || resize.height < 0 || resize.dpi < 0) {
      throw RangeError("a size is not negative");
    }
    if (resize.width == 0 && resize.height == 0) throw RangeError("a size has a width or a height");
    if (resize.unit == LengthUnit::map) throw RangeError("a size is not stated in map units");
    Resolution dpi{resize.dpi, resize.dpi};
    if (resize.unit == LengthUnit::millimeters && !dpi.IsKnown()) dpi = ResolutionOf(picture);
    double width = PixelsOf(resize.width, resize.unit, picture.Width(), dpi.x);
    double height = PixelsOf(resize.height, resize.unit, picture.Height(), dpi.y);
    const Proportion proportion = ProportionFor(resize, picture);
    if (resize.width == 0) width = height * proportion.across / proportion.down;
    if (resize.height == 0) height = width * proportion.down / proportion.across;
    return ResizeStep{SideOf(width), SideOf(height), resize.options};
  });
}

}  // namespace rasterkit

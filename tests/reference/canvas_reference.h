#pragma once

#include <array>
#include <functional>
#include <optional>
#include <utility>

#include "tests/reference/blend.h"
#include "tests/reference/blit_reference.h"

/// Drawing a part of a picture onto another one, pixel by pixel, straight from the rules.
namespace rasterkit::reference {

enum class Way { copied, opaque, keyed, blended };

struct Manner {
  Way way = Way::opaque;
  int constantAlpha = 255;
  bool pixelAlpha = false;
  TColor key = 0;
};

/// Position of the source pixel of a target pixel; no value if none is drawn.
using SourceOf = std::function<std::optional<std::pair<int, int>>(int x, int y)>;

/// Result of `drawn` on a target pixel; no value if it stays.
inline std::optional<ReferencePixel> Met(const ReferencePixel& there, ReferencePixel drawn,
                                         const Manner& manner) {
  switch (manner.way) {
    case Way::copied:
      return drawn;
    case Way::keyed:
      if (drawn.red + drawn.green * 256 + drawn.blue * 65536 == manner.key) return std::nullopt;
      [[fallthrough]];
    case Way::opaque:
      drawn.alpha = 255;
      return drawn;
    case Way::blended:
      break;
  }
  const int weight = (manner.pixelAlpha ? drawn.alpha : 255) * manner.constantAlpha;
  if (weight == 0) return std::nullopt;
  ReferencePixel mixed;
  mixed.red = MixedChannel(drawn.red, there.red, weight);
  mixed.green = MixedChannel(drawn.green, there.green, weight);
  mixed.blue = MixedChannel(drawn.blue, there.blue, weight);
  mixed.alpha = MixedChannel(255, there.alpha, weight);
  return mixed;
}

/// The target after every pixel that `sourceOf` names was drawn.
inline Raster DrawBy(const Raster& target, const Raster& source, const SourceOf& sourceOf,
                     const Manner& manner) {
  Raster result = target.Clone();
  for (int y = 0; y < result.Height(); ++y)
    std::fill(result.Row(y), result.Row(y) + result.Stride(), uint8_t{0});
  const bool indexesStay = (manner.way == Way::copied || manner.way == Way::opaque) &&
                           IsIndexed(target.Format()) && target.Format() == source.Format() &&
                           target.palette == source.palette;
  for (int y = 0; y < target.Height(); ++y) {
    for (int x = 0; x < target.Width(); ++x) {
      ReferencePixel pixel = ReadPixel(target, x, y);
      const auto from = sourceOf(x, y);
      if (from && from->first >= 0 && from->first < source.Width() && from->second >= 0 &&
          from->second < source.Height()) {
        if (auto met = Met(pixel, ReadPixel(source, from->first, from->second), manner)) {
          if (!indexesStay) met->index = NearestIndex(target.palette, *met);
          pixel = *met;
        }
      }
      WritePixel(result, x, y, pixel);
    }
  }
  return result;
}

/// The source position under the center of a target position. `start` to `end` shows `partStart` to
/// `partEnd`; a picture mirrored is the mirror image of the plain one.
inline std::optional<int> PartPosition(int target, int start, int end, int partStart, int partEnd) {
  const int64_t low = std::min(start, end), high = std::max(start, end);
  const int64_t partLow = std::min(partStart, partEnd), partHigh = std::max(partStart, partEnd);
  if (target < low || target >= high || partLow == partHigh) return std::nullopt;
  const bool mirrored = (end < start) != (partEnd < partStart);
  const int64_t inPart = (2 * (target - low) + 1) * (partHigh - partLow) / (2 * (high - low));
  return static_cast<int>(mirrored ? partHigh - 1 - inPart : partLow + inPart);
}

inline Raster DrawPart(const Raster& target, const PixelRect& place, const Raster& source,
                       const PixelRect& part, const Manner& manner) {
  const auto sourceOf = [&](int x, int y) -> std::optional<std::pair<int, int>> {
    const auto column = PartPosition(x, place.left, place.right, part.left, part.right);
    const auto row = PartPosition(y, place.top, place.bottom, part.top, part.bottom);
    if (!column || !row) return std::nullopt;
    return std::pair(*column, *row);
  };
  return DrawBy(target, source, sourceOf, manner);
}

inline int64_t FloorOf(int64_t a, int64_t b) {
  return a / b - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0);
}

/// The parallelogram by Cramer's rule, all in doubled coordinates so that centers are whole. The
/// part must not be mirrored.
inline Raster DrawParallelogram(const Raster& target, const std::array<PixelPoint, 3>& corners,
                                const Raster& source, const PixelRect& part) {
  const PixelPoint a = corners[0], b = corners[1], c = corners[2];
  const int64_t ux = b.x - a.x, uy = b.y - a.y, vx = c.x - a.x, vy = c.y - a.y;
  const int64_t area = ux * vy - uy * vx;
  const auto sourceOf = [&](int x, int y) -> std::optional<std::pair<int, int>> {
    if (area == 0) return std::nullopt;
    const int64_t px = 2 * x + 1 - 2 * a.x, py = 2 * y + 1 - 2 * a.y;
    const int64_t across = FloorOf((px * vy - py * vx) * (part.right - part.left), 2 * area);
    const int64_t down = FloorOf((ux * py - uy * px) * (part.bottom - part.top), 2 * area);
    if (across < 0 || across >= part.right - part.left || down < 0 ||
        down >= part.bottom - part.top)
      return std::nullopt;
    return std::pair(static_cast<int>(part.left + across), static_cast<int>(part.top + down));
  };
  return DrawBy(target, source, sourceOf, {Way::copied});
}

}  // namespace rasterkit::reference

#pragma once

#include <cmath>
#include <optional>

#include <rasterkit/raster/stretch/blit.h>

#include "tests/reference/convert_reference.h"

/// Drawing rows onto rows, a pixel at a time.
namespace rasterkit::reference {

/// The source position under the center of a target pixel; nothing outside the stretched picture.
inline std::optional<int> SourcePosition(int target, int start, int end, int sourceSize) {
  const int low = std::min(start, end), high = std::max(start, end);
  if (target < low || target >= high) return std::nullopt;
  const double center = (target - low + 0.5) * sourceSize / (high - low);
  const int position = static_cast<int>(std::floor(center));
  return end < start ? sourceSize - 1 - position : position;
}

inline int NearestIndex(const HPALETTE& palette, const ReferencePixel& pixel) {
  int best = 0, bestDistance = 1 << 30;
  for (int i = 0; i < palette.Count(); ++i) {
    const tagPALETTEENTRY e = palette.Entry(i);
    const int distance = (e.peRed - pixel.red) * (e.peRed - pixel.red) +
                         (e.peGreen - pixel.green) * (e.peGreen - pixel.green) +
                         (e.peBlue - pixel.blue) * (e.peBlue - pixel.blue);
    if (distance < bestDistance) {
      bestDistance = distance;
      best = i;
    }
  }
  return best;
}

inline int BlendChannel(int source, int target, int alpha) {
  const double a = alpha / 255.0;
  return static_cast<int>(std::floor(source * a + target * (1 - a) + 0.5 + 1e-9));
}

/// The target after `source` was drawn into `place`. `key` must be a color the source can hold.
inline Raster Blit(const Raster& target, const PixelRect& place, const Raster& source,
                   std::optional<TColor> key) {
  Raster result = target.Clone();
  for (int y = 0; y < result.Height(); ++y)
    std::fill(result.Row(y), result.Row(y) + result.Stride(), uint8_t{0});
  const bool blend = source.Format() == pf32bit && source.alphaFormat == afDefined;
  const bool indexesStay = !blend && !key && IsIndexed(target.Format()) &&
                           target.Format() == source.Format() && target.palette == source.palette;
  for (int y = 0; y < target.Height(); ++y) {
    for (int x = 0; x < target.Width(); ++x) {
      ReferencePixel pixel = ReadPixel(target, x, y);
      const auto fromX = SourcePosition(x, place.left, place.right, source.Width());
      const auto fromY = SourcePosition(y, place.top, place.bottom, source.Height());
      if (fromX && fromY) {
        ReferencePixel drawn = ReadPixel(source, *fromX, *fromY);
        const TColor color = drawn.red + drawn.green * 256 + drawn.blue * 65536;
        const bool leftOut = blend ? drawn.alpha == 0 : key && color == *key;
        if (blend) {
          const int alpha = drawn.alpha;
          drawn.red = BlendChannel(drawn.red, pixel.red, alpha);
          drawn.green = BlendChannel(drawn.green, pixel.green, alpha);
          drawn.blue = BlendChannel(drawn.blue, pixel.blue, alpha);
          drawn.alpha = BlendChannel(255, pixel.alpha, alpha);
        } else {
          drawn.alpha = 255;
        }
        if (!indexesStay) drawn.index = NearestIndex(target.palette, drawn);
        if (!leftOut) pixel = drawn;
      }
      WritePixel(result, x, y, pixel);
    }
  }
  return result;
}

}  // namespace rasterkit::reference

#pragma once

#include <cstdint>

#include "tests/reference/canvas_reference.h"

/// Halftone stretching, pixel by pixel: every source pixel gets its weight.
namespace rasterkit::reference {

/// Weight of source position `j` of `size` for target position `i` of `length`. The weights of a
/// target position add up to HalftoneTotal.
inline int64_t HalftoneWeight(int64_t i, int64_t length, int64_t j, int64_t size) {
  if (length <= size) {
    // Overlap of the two, in units of 1 / (size * length).
    const int64_t from = std::max(i * size, j * length);
    const int64_t to = std::min((i + 1) * size, (j + 1) * length);
    return std::max<int64_t>(to - from, 0);
  }
  const int64_t unit = 2 * length;
  const int64_t center = std::clamp<int64_t>((2 * i + 1) * size - length, 0, (size - 1) * unit);
  return std::max<int64_t>(unit - std::abs(center - j * unit), 0);
}

inline int64_t HalftoneTotal(int64_t length, int64_t size) {
  return length <= size ? size : 2 * length;
}

inline int RoundHalfUp(int64_t sum, int64_t divisor) {
  return static_cast<int>((2 * sum + divisor) / (2 * divisor));
}

/// The mean for pixel (i, k) of a picture stretched to length x height.
inline ReferencePixel MeanPixel(const Raster& source, int64_t i, int64_t length, int64_t k,
                                int64_t height, bool weightByAlpha) {
  int64_t sums[4] = {}, weighted[3] = {};
  for (int y = 0; y < source.Height(); ++y) {
    const int64_t rowWeight = HalftoneWeight(k, height, y, source.Height());
    for (int x = 0; rowWeight != 0 && x < source.Width(); ++x) {
      const int64_t weight = rowWeight * HalftoneWeight(i, length, x, source.Width());
      if (weight == 0) continue;
      const ReferencePixel pixel = ReadPixel(source, x, y);
      const int channels[3] = {pixel.red, pixel.green, pixel.blue};
      for (int c = 0; c < 3; ++c) {
        sums[c] += weight * channels[c];
        weighted[c] += weight * pixel.alpha * channels[c];
      }
      sums[3] += weight * pixel.alpha;
    }
  }
  const int64_t total =
      HalftoneTotal(length, source.Width()) * HalftoneTotal(height, source.Height());
  ReferencePixel mean;
  int* channels[3] = {&mean.red, &mean.green, &mean.blue};
  for (int c = 0; c < 3; ++c)
    *channels[c] = weightByAlpha && sums[3] != 0 ? RoundHalfUp(weighted[c], sums[3])
                                                 : RoundHalfUp(sums[c], total);
  mean.alpha = weightByAlpha ? RoundHalfUp(sums[3], total) : 255;
  return mean;
}

/// The target after the whole source was drawn into `place` by means.
inline Raster DrawHalftone(const Raster& target, const PixelRect& place, const Raster& source,
                           bool weightByAlpha, const Manner& manner) {
  Raster result = target.Clone();
  for (int y = 0; y < result.Height(); ++y)
    std::fill(result.Row(y), result.Row(y) + result.Stride(), uint8_t{0});
  const int left = std::min(place.left, place.right), right = std::max(place.left, place.right);
  const int top = std::min(place.top, place.bottom), bottom = std::max(place.top, place.bottom);
  for (int y = 0; y < target.Height(); ++y) {
    for (int x = 0; x < target.Width(); ++x) {
      ReferencePixel pixel = ReadPixel(target, x, y);
      if (x >= left && x < right && y >= top && y < bottom) {
        const int i = place.right < place.left ? right - 1 - x : x - left;
        const int k = place.bottom < place.top ? bottom - 1 - y : y - top;
        const ReferencePixel mean =
            MeanPixel(source, i, right - left, k, bottom - top, weightByAlpha);
        if (auto met = Met(pixel, mean, manner)) {
          met->index = NearestIndex(target.palette, *met);
          pixel = *met;
        }
      }
      WritePixel(result, x, y, pixel);
    }
  }
  return result;
}

}  // namespace rasterkit::reference

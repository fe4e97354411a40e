#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// How often each level of a channel occurs.
using LevelCounts = std::array<uint64_t, 256>;

/// What a picture is made of: luminance (0.297 red, 0.589 green, 0.114 blue) and the channels.
struct ValueHistogram {
  LevelCounts gray{}, red{}, green{}, blue{};
  friend bool operator==(const ValueHistogram&, const ValueHistogram&) = default;
};

/// Counts the pixels of some parts of a bitmap of any format; alpha is not looked at.
ValueHistogram CountLevels(const TBitmap& bitmap, const std::vector<TRect>& parts);

/// What is said about counts.
struct LevelFacts {
  /// The least and the greatest level that occurs, and the mean, rounded; all 0 if there are none.
  int least = 0, greatest = 0, mean = 0;
  /// Share of the pixels that are black and white, in percent, rounded.
  int blackPercent = 0, whitePercent = 0;
};
LevelFacts FactsOf(const LevelCounts& counts);

/// Heights of the bars of a histogram, 0 to 1. The highest bar is 1, but levels at both ends, which
/// often hold most pixels of plans, do not press the others down.
std::array<double, 256> BarHeights(const LevelCounts& counts);

}  // namespace rasterkit

#pragma once

#include <array>
#include <cstdint>

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Pixels of each index.
using IndexCounts = std::array<uint64_t, 256>;

/// What indexes become in another indexed format.
struct IndexPlan {
  std::array<uint8_t, 256> map{};
  HPALETTE palette;
  /// True if the result is black and white because it has no room for the colors.
  bool isThreshold = false;
};

/// Plans ConvertIndexed; a wider format needs no counts.
IndexPlan PlanOfIndexes(const IndexCounts& counts, const HPALETTE& palette, TPixelFormat from,
                        TPixelFormat to);

/// Converts an indexed raster to another indexed format. Indexes are kept if all used ones fit (the
/// palette is cut, or filled up with black to 16 or 256 entries). Else colors are kept if they fit.
/// Else the rules for true color apply: an adaptive palette at 4 bits; at 1 bit, gray above 127 is
/// white.
Raster ConvertIndexed(const Raster& source, TPixelFormat format);

/// Converts any raster to black and white: gray above 127 is white (bit 1).
Raster ThresholdToMono(const Raster& source);

}  // namespace rasterkit

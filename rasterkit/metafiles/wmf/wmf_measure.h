#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include <rasterkit/drawing/ink/plane_affine.h>

namespace rasterkit::detail {

/// Limit of measured records; real drawings without a window have a few hundred.
inline constexpr uint32_t kMostMeasuredRecords = 1 << 18;

/// Measures the drawing of a WMF file without a window: the bounding box of everything that it
/// would paint without clipping, text included. The unit is a pixel at 96 dpi, y downward; a
/// logical unit is one pixel unless the records set another scale. Returns nothing if nothing is
/// painted. Plays at most `kMostMeasuredRecords` records, without painting and without decoding
/// bitmaps. Throws FormatError if the data does not start with a WMF header.
std::optional<RectD> MeasureWmf(std::span<const uint8_t> bytes);

}  // namespace rasterkit::detail

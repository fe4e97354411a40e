#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include <rasterkit/drawing/ink/affine.h>

namespace rasterkit::detail {

/// Real drawings without a window have a few hundred.
inline constexpr uint32_t kMostMeasuredRecords = 1 << 18;

/// What a Windows metafile without a window would paint if nothing were clipped, texts included:
/// pixels of a common screen, on which a unit is one unless the records say otherwise, y downward.
/// Nothing for a drawing that paints nothing. Costs as much as drawing it where nothing is seen,
/// bitmaps left out, and looks at `kMostMeasuredRecords` at most. Throws FormatError when the bytes
/// do not start with a header.
std::optional<RectD> MeasureWmf(std::span<const uint8_t> bytes);

}  // namespace rasterkit::detail

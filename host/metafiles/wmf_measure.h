#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include <rasterkit/host/metafiles/affine.h>

namespace rasterkit::detail {

/// What a Windows metafile without a window would paint if nothing were clipped, texts included:
/// pixels of a common screen, on which a unit is one unless the records say otherwise, y downward.
/// Nothing for a drawing that paints nothing. Costs as much as drawing it on one pixel, bitmaps
/// left out. Throws FormatError when the bytes do not start with a header.
std::optional<RectD> MeasureWmf(std::span<const uint8_t> bytes);

}  // namespace rasterkit::detail

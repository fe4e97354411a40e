#pragma once

#include <cstdint>

#include <rasterkit/bands/pixel_grid.h>
#include <rasterkit/placement/affine.h>

namespace rasterkit::detail {

/// Writes rows `first` to `last - 1` of the target: each pixel is the nearest one of the source
/// that `toOld` leads to (halves to even), or `background`, a pixel's bytes or a packed pixel's
/// value, where there is none; with `isClamped` the nearest pixel of the source's edge instead.
void GatherByAffine(const Affine& toOld, const ConstPixelGrid& source, const PixelGrid& target,
                    const uint8_t* background, bool isClamped, int first, int last);

}  // namespace rasterkit::detail

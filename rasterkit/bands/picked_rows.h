#pragma once

#include <vector>

#include <rasterkit/bands/pixel_grid.h>

namespace rasterkit::detail {

/// Writes row `targetRow` of the target: pixel x is the source's pixel (columns[x], sourceRow).
void PickPixels(const ConstPixelGrid& source, int sourceRow, const std::vector<int>& columns,
                const PixelGrid& target, int targetRow);

}  // namespace rasterkit::detail

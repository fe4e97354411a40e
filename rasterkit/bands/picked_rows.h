#pragma once

#include <vector>

#include <rasterkit/bands/pixel_grid.h>

namespace rasterkit::detail {

/// Writes rows `first` to `last - 1` of the target: pixel (x, y) is the source's pixel
/// (columns[x], rows[y]).
void PickPixels(const std::vector<int>& columns, const std::vector<int>& rows,
                const ConstPixelGrid& source, const PixelGrid& target, int first, int last);

}  // namespace rasterkit::detail

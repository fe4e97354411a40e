#pragma once

#include <vector>

#include <rasterkit/raster/color_points.h>
#include <rasterkit/raster/palette.h>

namespace rasterkit {

/// Chooses `count` (2 to 256) colors that keep the squared error of the points small. The set of
/// points is split repeatedly where that reduces the error most; then a few rounds of nearest
/// assignment refine the means. Deterministic. Unused entries are black.
std::vector<tagPALETTEENTRY> ChooseAdaptivePalette(std::vector<ColorPoint> points, size_t count);

}  // namespace rasterkit

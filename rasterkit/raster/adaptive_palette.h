#pragma once

#include <vector>

#include <rasterkit/raster/color_points.h>
#include <rasterkit/raster/palette.h>

namespace rasterkit {

/// Chooses `count` (2 to 256) colors that keep the squared error of the points small. The set of
/// points is cut again and again where the error falls most, then the means settle in a few rounds
/// of nearest assignment. Deterministic; fewer points than entries are followed by black.
std::vector<tagPALETTEENTRY> ChooseAdaptivePalette(std::vector<ColorPoint> points, size_t count);

}  // namespace rasterkit

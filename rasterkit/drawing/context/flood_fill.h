#pragma once

#include <optional>

#include <rasterkit/drawing/ink/painter.h>

namespace rasterkit::detail {

/// Returns the pixels that a flood fill from `start` reaches inside the painter's clip, connected
/// horizontally or vertically; nothing if the start pixel is not filled.
std::optional<CoverageMask> FloodMask(const Painter& painter, PixelPoint start, uint32_t color,
                                      FloodFill kind);

}  // namespace rasterkit::detail

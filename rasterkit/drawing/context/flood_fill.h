#pragma once

#include <optional>

#include <rasterkit/drawing/ink/painter.h>

namespace rasterkit::detail {

/// The pixels that a flood fill from `start` reaches inside the painter's clip, going across and
/// down; nothing when it does not begin.
std::optional<CoverageMask> FloodMask(const Painter& painter, PixelPoint start, uint32_t color,
                                      FloodFill kind);

}  // namespace rasterkit::detail

#pragma once

#include <optional>

#include <rasterkit/drawing/ink/drawing_state.h>
#include <rasterkit/drawing/ink/ink.h>

namespace rasterkit::detail {

/// What a brush paints with, nothing for one that paints nothing. Hatches and patterns are not made
/// smaller where the target is coarser than the recording device, as they would be lost; on a finer
/// one each of their pixels is a block of pixels.
std::optional<Ink> InkOf(const LogicalBrush& brush, const DrawingState& state,
                         const Affine& deviceToTarget);

}  // namespace rasterkit::detail

#pragma once

#include <optional>

#include <rasterkit/drawing/ink/drawing_state.h>
#include <rasterkit/drawing/ink/ink.h>

namespace rasterkit::detail {

/// Returns the ink of a brush; nothing for the null brush. On a target coarser than the recording
/// device, hatches and patterns keep their size, as they would be unreadable otherwise; on a finer
/// one each of their pixels becomes a block of pixels.
std::optional<Ink> InkOf(const LogicalBrush& brush, const DrawingState& state,
                         const PlaneAffine& deviceToTarget);

}  // namespace rasterkit::detail

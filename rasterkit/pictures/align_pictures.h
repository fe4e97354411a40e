#pragma once

#include <optional>

#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/pictures/steps.h>
#include <rasterkit/placement/placement.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// From pixel indexes of a picture to those of the picture that is laid over it; nothing if it is
/// stretched over the whole. Says so in `changes`. Throws RangeError for CombineAlign::map without
/// both positions, UnsupportedError, which names both, for different coordinate systems.
RASTERKIT_EXPORT std::optional<Affine> Alignment(const Placement& picture, const Placement& over,
                                                 CombineAlign align, Changes& changes);

/// False if no pixel of the picture that is laid over lies in the other one.
bool Overlap(Sides picture, Sides over, const Affine& toOver);

}  // namespace rasterkit::detail

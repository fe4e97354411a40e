#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Lets the user enter a width and a height in pixels. While "proportional" is checked, as it is at
/// first, each field follows the other in the proportion of the given sizes (not if one of these is
/// 0).
///
/// Returns true if the user pressed OK: the sizes are the entered ones then, rounded, halves to
/// even, and `proportional` is the state of the box. Otherwise all three do not change. Runs on the
/// thread that owns the application object.
RASTERKIT_EXPORT bool EditSize(int32_t& width, int32_t& height, bool& proportional);

}  // namespace rasterkit

#pragma once

#include <rasterkit/placement/placement.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// In pixels: positions that differ by less are the same.
inline constexpr double kSamePosition = 0.001;

/// Distance between two positions of a picture of that size, in pixels of the first one, at the
/// worst of its four corners; infinite if the numbers do not give one.
RASTERKIT_EXPORT double DifferenceOf(const Affine& position, const Affine& other, int width,
                                     int height);

/// Sets the differences of all stated positions from the one that counts (the first one if none
/// counts).
void CompareStated(Placement& placement, int width, int height);

}  // namespace rasterkit::detail

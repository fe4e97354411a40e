#pragma once

#include <rasterkit/kernels/turn/rotation_mapping.h>

namespace rasterkit::kernels {

/// Pixels per side of the largest source for which the error bounds of the fixed-point steps hold;
/// of a target twice as many. Larger pictures take every pixel by the exact rule.
inline constexpr int kFastSize = 1 << 17;

inline bool HasFastSize(const RotationMapping& mapping, int targetHeight) {
  return mapping.SourceWidth() <= kFastSize && mapping.SourceHeight() <= kFastSize &&
         mapping.TargetWidth() <= 2 * kFastSize && targetHeight <= 2 * kFastSize;
}

}  // namespace rasterkit::kernels

#pragma once

#include <cstdint>

#include <rasterkit/bands/pixel_grid.h>
#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/kernels/turn/rotation_mapping.h>
#include <rasterkit/placement/affine.h>

namespace rasterkit::detail {

/// Nearest pixels of a picture along an affine.
struct AffineTask {
  /// From pixel indexes of the whole result to those of the whole source.
  Affine toOld;
  /// Of the whole source.
  Sides source;
  /// A pixel's bytes, or a packed pixel's value.
  const uint8_t* background = nullptr;
  /// Takes the nearest pixel of the source's edge instead of the background.
  bool isClamped = false;
};

/// Writes rows `first` to `last - 1` of the target, a part of the result: each pixel is the nearest
/// one of the source that the affine leads to (halves to even), or the background where there is
/// none. `parts` says where source and target lie in the whole pictures.
void GatherByAffine(const AffineTask& task, const ConstPixelGrid& source, const PixelGrid& target,
                    int first, int last, const kernels::RotationParts& parts);

}  // namespace rasterkit::detail

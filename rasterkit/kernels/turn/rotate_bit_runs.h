#pragma once

#include <rasterkit/kernels/rows/pixel_rows.h>
#include <rasterkit/kernels/turn/rotation_mapping.h>

namespace rasterkit::kernels {

/// True where a turn is so near to none, or to half a turn, that a target row takes its pixels in
/// runs that are straight in the source too: some pixels of one row, one after the other.
bool TakesLongRuns(const RotationMapping& mapping, int targetHeight);

/// As `RotatePixels`, for 1-bit pictures whose mapping takes long runs. Runs move as words of bits.
void RotateBitRuns(const RotationMapping& mapping, const ConstPixelRows& source,
                   const PixelRows& target, bool background, int firstRow, int lastRow,
                   const RotationParts& parts = {});

}  // namespace rasterkit::kernels

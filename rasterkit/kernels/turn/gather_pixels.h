#pragma once

#include <rasterkit/kernels/rows/pixel_rows.h>
#include <rasterkit/kernels/turn/rotation_mapping.h>

namespace rasterkit::kernels {

/// As `RotatePixels`, for pixels of any number of whole bytes: `background` has `bytesPerPixel`
/// bytes. Takes exactly the same source pixels.
void GatherPixels(const RotationMapping& mapping, const ConstPixelRows& source,
                  const PixelRows& target, size_t bytesPerPixel, const uint8_t* background,
                  int firstRow, int lastRow, const RotationParts& parts = {});

/// Fills the pixels of rows `firstRow` to `lastRow - 1` that have no source pixel with the nearest
/// pixel of the source's edge. `bitsPerPixel` is 1, 4 or a multiple of 8.
void GatherEdges(const RotationMapping& mapping, const ConstPixelRows& source,
                 const PixelRows& target, int bitsPerPixel, int firstRow, int lastRow,
                 const RotationParts& parts = {});

}  // namespace rasterkit::kernels

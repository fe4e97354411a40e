#pragma once

#include <rasterkit/kernels/rows/pixel_rows.h>
#include <rasterkit/kernels/turn/rotation_mapping.h>

namespace rasterkit::kernels {

/// A good number of rows to give to one call of `RotatePixels`: a strip of the target this high
/// takes its pixels from a part of the source that stays in the first-level cache while a tile is
/// done.
inline constexpr int kRotationStripRows = 32;

/// Writes rows `firstRow` to `lastRow - 1` of the turned picture: each pixel is the one of `source`
/// that `mapping` names, or `background` where that lies outside; the padding of the rows becomes
/// zero. Reads `source` only, writes only these rows, so that bands of rows may be done by threads
/// side by side. Pixels move whole; 1- and 4-bit pixels lie packed, the first in the high bits.
///
/// `bitsPerPixel` is 1, 4, 8, 16, 24 or 32; `background` is a pixel's bytes in little-endian order,
/// or a packed pixel's value. The rows are those of the pictures that the mapping was made for, or
/// `parts` of them.
void RotatePixels(const RotationMapping& mapping, const ConstPixelRows& source,
                  const PixelRows& target, int bitsPerPixel, uint32_t background, int firstRow,
                  int lastRow, const RotationParts& parts = {});

}  // namespace rasterkit::kernels

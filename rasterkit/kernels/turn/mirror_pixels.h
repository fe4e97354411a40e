#pragma once

#include <rasterkit/kernels/rows/pixel_rows.h>

/// Mirroring in place. `rows.width` and `rows.height` may be less than a picture's: what lies after
/// the last pixel of a row stays as it is, to the bit. `bitsPerPixel` is 1, 4, 8, 16, 24 or 32.
namespace rasterkit::kernels {

/// Reverses the order of the pixels in each row.
void MirrorLeftRight(const PixelRows& rows, int bitsPerPixel);

/// Reverses the order of the rows.
void MirrorTopBottom(const PixelRows& rows, int bitsPerPixel);

}  // namespace rasterkit::kernels

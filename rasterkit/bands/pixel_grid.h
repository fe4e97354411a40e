#pragma once

#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/kernels/rows/pixel_rows.h>
#include <rasterkit/raster/pixels.h>

namespace rasterkit::detail {

/// Borrowed rows whose pixels move whole: those of a raster, or of a plane of samples.
struct PixelGrid {
  kernels::PixelRows rows;
  /// Of a pixel: 1, 4, or whole bytes.
  int bits = 8;

  size_t BytesPerPixel() const { return bits < 8 ? 1 : static_cast<size_t>(bits / 8); }
};

PixelGrid GridOf(Raster& raster);
PixelGrid GridOf(Samples& samples, int plane);

/// Throws RangeError if the pixels have another size.
void RequireSides(const Pixels& pixels, Sides sides);

}  // namespace rasterkit::detail

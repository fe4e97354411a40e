#pragma once

#include <rasterkit/bands/stage/band.h>
#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/kernels/rows/pixel_rows.h>
#include <rasterkit/raster/pixels.h>

namespace rasterkit::detail {

/// Borrowed rows whose pixels move whole: those of a raster, or of a plane of samples.
template <class Rows>
struct GridOfRows {
  Rows rows;
  /// Of a pixel: 1, 4, or whole bytes.
  int bits = 8;

  size_t BytesPerPixel() const { return bits < 8 ? 1 : static_cast<size_t>(bits / 8); }
};
using PixelGrid = GridOfRows<kernels::PixelRows>;
using ConstPixelGrid = GridOfRows<kernels::ConstPixelRows>;

/// 1 for a raster.
int PlanesOf(const Pixels& pixels);
PixelGrid GridOf(Pixels& pixels, int plane);
ConstPixelGrid GridOf(const Pixels& pixels, int plane);

/// A part of a grid. Packed pixels begin at a bit of the first byte: `skipped` pixels before them.
struct GridPart {
  kernels::ConstPixelRows rows;
  int skipped = 0;
};
/// `part` is counted from the grid's top left corner and lies inside.
GridPart PartOf(const ConstPixelGrid& grid, const BandRect& part);

/// Throws RangeError if the pixels have another size.
void RequireSides(const Pixels& pixels, Sides sides);

}  // namespace rasterkit::detail

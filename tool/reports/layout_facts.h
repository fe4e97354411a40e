#pragma once

#include <string>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/raster/pixel_layout.h>

namespace rasterkit::tool {

/// Bits per pixel of the picture as it is shown: 1, 4, 8, 24 or 32; those of its numbers for a
/// grid.
int ShownBits(const PixelLayout& layout, PictureType type);

/// Entries of the palette, or of the gray ramp of a gray picture; 0 for true color and grids.
int ShownPaletteEntries(const PixelLayout& layout, PictureType type);

/// Number type of a TIFF file whose pixels are numbers and not colors: "float32", "uint16" and so
/// on; else "none".
std::string GridName(const PixelLayout& layout, PictureType type);

}  // namespace rasterkit::tool

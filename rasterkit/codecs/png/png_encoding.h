#pragma once

#include <span>
#include <vector>

#include <png.h>

#include <rasterkit/raster/raster.h>

/// Steps of encoding a PNG file that do not depend on where the rows come from.
namespace rasterkit::detail {

/// The kind of samples in the file.
struct PngSampleKind {
  int colorType = PNG_COLOR_TYPE_RGB, bitDepth = 8;
};

/// The first `count` entries of the raster's palette; those beyond it are black. See
/// PaletteEntriesOfFile.
std::vector<png_color> PngPaletteOf(const Raster& raster, int count);

/// The key color: alpha 0 for each entry of that color, or its sample values. A color that no pixel
/// can have, and every color beside an alpha channel, is skipped.
void SetPngKeyColor(png_structp png, png_infop info, const PngSampleKind& kind,
                    std::span<const png_color> palette, TColor color);

/// Sets limits, filter and `level`: zlib's 0 to 9; -1 chooses by the kind of samples.
void SetPngCompression(png_structp png, const PngSampleKind& kind, int level);

}  // namespace rasterkit::detail

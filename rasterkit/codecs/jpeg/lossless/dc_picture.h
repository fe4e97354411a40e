#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Decodes a JPEG file at an eighth of its size, rounded up: each pixel is the mean of a block of
/// 8 x 8 pixels, from its first coefficient alone. Gray to pf8bit with a gray ramp, color and inks
/// to pf24bit, as DecodeJpeg does. A reduced chroma sample stands for all pixels that it covers.
///
/// Throws FormatError for a damaged or truncated file, UnsupportedError for 12 bits per sample,
/// lossless and hierarchical files, 2 or more than 4 components, LimitError if the coefficients
/// exceed the picture memory limit.
RASTERKIT_EXPORT Raster DecodeJpegEighth(std::span<const uint8_t> file);

}  // namespace rasterkit

#pragma once

#include <span>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Reads the largest picture of an icon file, or the deepest of the largest ones, as a 32-bit
/// raster with defined alpha. It is a PNG file, or has 1 to 32 bits per pixel and a mask. The mask
/// gives the transparent pixels, unless the picture has an alpha channel that is not all 0.
///
/// A truncated file gives the rows present and a warning. Throws FormatError if the bytes are not
/// an icon file, UnsupportedError if the bitmap decoder does not support it, LimitError.
RASTERKIT_EXPORT Raster DecodeIco(std::span<const uint8_t> bytes, CodecReport* report = nullptr);

}  // namespace rasterkit

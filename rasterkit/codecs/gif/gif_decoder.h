#pragma once

#include <span>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Decodes the first picture of a GIF file on its logical screen: pf8bit with the palette of the
/// picture, else of the file. A transparent entry sets `transparentColor`, with a warning if opaque
/// pixels have that color too. The area around the picture is transparent or has the background
/// color of the file. A screen that is too small grows. A truncated or damaged file gives the rows
/// present and a warning. Throws FormatError, LimitError.
RASTERKIT_EXPORT Raster DecodeGif(std::span<const uint8_t> bytes, CodecReport* report = nullptr);

}  // namespace rasterkit

#pragma once

#include <span>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Decodes a WebP file to pf24bit, with an alpha channel to pf32bit (afDefined). An animation gives
/// its first picture on the canvas, which is transparent around it. The ICC profile is kept. A
/// truncated or damaged file gives the rows present and a warning. Throws FormatError, LimitError,
/// UnsupportedError.
RASTERKIT_EXPORT Raster DecodeWebp(std::span<const uint8_t> bytes, CodecReport* report = nullptr);

}  // namespace rasterkit

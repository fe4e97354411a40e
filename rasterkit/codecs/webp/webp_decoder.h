#pragma once

#include <span>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Decodes a WebP file's bytes: pf24bit, with an alpha channel pf32bit (afDefined). Of an animation
/// it is the first picture on its canvas, transparent around it. The ICC profile comes along. A
/// truncated or damaged file gives the rows that are there and a warning. Throws FormatError,
/// LimitError, UnsupportedError.
RASTERKIT_EXPORT Raster DecodeWebp(std::span<const uint8_t> bytes, CodecReport* report = nullptr);

}  // namespace rasterkit

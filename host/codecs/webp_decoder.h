#pragma once

#include <span>

#include <rasterkit/host/codecs/codec_report.h>
#include <rasterkit/host/raster/raster.h>

namespace rasterkit {

/// Decodes a WebP file's bytes, of an animation its first picture: pf24bit, with an alpha channel
/// pf32bit (afDefined). The ICC profile comes along. A truncated file gives the rows that are there
/// and a warning. Throws FormatError, LimitError.
RASTERKIT_EXPORT Raster DecodeWebp(std::span<const uint8_t> bytes, CodecReport* report = nullptr);

}  // namespace rasterkit

#pragma once

#include <span>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Decodes a PNG file. Palettes stay (1-, 4-, 8-bit; 2-bit becomes 4-bit); gray becomes an indexed
/// raster with a gray ramp (1- and 4-bit stay, 2-bit becomes 4-bit); true color becomes pf24bit,
/// with an alpha channel pf32bit (afDefined). 16-bit samples are rounded to 8. Gamma is ignored.
/// tRNS sets `transparentColor` (of several, the first fully transparent one); an alpha channel
/// sets it to white. Resolution and ICC profile are kept. A truncated file gives the rows present
/// and a warning. Throws FormatError, LimitError.
RASTERKIT_EXPORT Raster DecodePng(std::span<const uint8_t> bytes, CodecReport* report = nullptr);

}  // namespace rasterkit

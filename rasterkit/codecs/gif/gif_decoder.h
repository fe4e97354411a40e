#pragma once

#include <span>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Decodes the first picture of a GIF file's bytes on its logical screen: pf8bit with the palette
/// that counts for it. A transparent entry sets `transparentColor`, with a warning when opaque
/// pixels have that colour as well; what lies around the picture is transparent or of the file's
/// background colour. A screen that is too small grows. A truncated or damaged file gives the rows
/// that are there and a warning. Throws FormatError, LimitError.
RASTERKIT_EXPORT Raster DecodeGif(std::span<const uint8_t> bytes, CodecReport* report = nullptr);

}  // namespace rasterkit

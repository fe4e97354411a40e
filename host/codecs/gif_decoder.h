#pragma once

#include <span>

#include <rasterkit/host/codecs/codec_report.h>
#include <rasterkit/host/raster/raster.h>

namespace rasterkit {

/// Decodes the first picture of a GIF file's bytes on its logical screen: pf8bit with the palette
/// that counts for it. A transparent entry sets `transparentColor`. A truncated file gives the rows
/// that are there and a warning. Throws FormatError, LimitError.
RASTERKIT_EXPORT Raster DecodeGif(std::span<const uint8_t> bytes, CodecReport* report = nullptr);

}  // namespace rasterkit

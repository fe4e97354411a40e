#pragma once

#include <span>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Reads the largest picture of an icon file, the deepest among equals, as a 32-bit raster with a
/// defined alpha channel: a PNG, or 1 to 32 bits with a mask. The mask says which pixels are
/// transparent, except in a picture that has an alpha channel with anything in it.
///
/// Data that end early give the rows that are there and a warning. Throws FormatError for bytes
/// that are no icon file, UnsupportedError for what the bitmap decoder does not read, LimitError.
RASTERKIT_EXPORT Raster DecodeIco(std::span<const uint8_t> bytes, CodecReport* report = nullptr);

}  // namespace rasterkit

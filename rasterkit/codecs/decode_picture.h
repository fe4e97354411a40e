#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Decodes a file by content, regardless of its name: all formats of the codec table that decode to
/// a raster. Throws UnsupportedError for a known format that is not decoded here (it names the
/// format; TIFF files are decoded by DecodeFrame), FormatError for an unknown one.
RASTERKIT_EXPORT Raster DecodePicture(TStream& stream, CodecReport* report = nullptr);

/// Decodes a file that lies in memory, without copying its bytes.
RASTERKIT_EXPORT Raster DecodePicture(std::span<const uint8_t> file, CodecReport* report = nullptr);

}  // namespace rasterkit

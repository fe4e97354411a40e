#pragma once

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Decodes by content, whatever the file is called: BMP, JPEG, PNG, GIF, WebP. Throws
/// UnsupportedError for a kind that is known but not decoded here (it names the kind), FormatError
/// for one that is not known.
RASTERKIT_EXPORT Raster DecodePicture(TStream& stream, CodecReport* report = nullptr);

}  // namespace rasterkit

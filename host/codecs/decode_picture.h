#pragma once

#include <rasterkit/host/codecs/codec_report.h>
#include <rasterkit/host/codecs/picture_type.h>
#include <rasterkit/host/raster/raster.h>
#include <rasterkit/host/runtime/stream.h>

namespace rasterkit {

/// Decodes by content, whatever the file is called: BMP, JPEG, PNG, GIF, WebP. Throws
/// UnsupportedError for a kind that is known but not decoded here (it names the kind), FormatError
/// for one that is not known.
RASTERKIT_EXPORT Raster DecodePicture(TStream& stream, CodecReport* report = nullptr);

}  // namespace rasterkit

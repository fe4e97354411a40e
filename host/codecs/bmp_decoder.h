#pragma once

#include <rasterkit/host/codecs/codec_report.h>
#include <rasterkit/host/raster/raster.h>
#include <rasterkit/host/runtime/stream.h>

namespace rasterkit {

/// Reads a Windows bitmap file from the stream's position; rows go straight from the stream into the raster.
/// Throws FormatError for bytes that are no bitmap file, LimitError for one beyond the budget.
RASTERKIT_EXPORT Raster DecodeBmp(TStream& stream, CodecReport* report = nullptr);

}  // namespace rasterkit

#pragma once

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/frame_options.h>
#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Reads the first picture of a TIFF or BigTIFF file that starts at the stream's position; see
/// docs/formats.md for the supported kinds. Rows are as stored: the caller applies the orientation
/// tag (see `ReadTiffFacts`).
RASTERKIT_EXPORT ImagingFrame DecodeTiff(TStream& stream, const FrameOptions& options = {},
                                         CodecReport* report = nullptr);

}  // namespace rasterkit

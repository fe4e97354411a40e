#pragma once

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/frame_options.h>
#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// The imaging codec: decodes the first picture of a file by content, whatever the file is called:
/// TIFF, JPEG, PNG, BMP, GIF, WebP. RGB is delivered as 24bppBGR; what has no pixel format of its
/// own above is converted to 32bppBGRA.
///
/// Throws FormatError("Invalid image") for bytes that no codec knows, else FormatError,
/// UnsupportedError or LimitError with the codec's own text.
RASTERKIT_EXPORT ImagingFrame DecodeFrame(TStream& stream, const FrameOptions& options = {},
                                          CodecReport* report = nullptr);

/// The frame as a picture to look at: grey gets a ramp, grids of 16 bits or floats become 8-bit
/// grey (unsigned words by their range, the others between their least and greatest value).
RASTERKIT_EXPORT Raster PictureOfFrame(ImagingFrame frame, CodecReport* report = nullptr);

}  // namespace rasterkit

#pragma once

#include <string>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/frame_options.h>
#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Decodes the first picture of a file by content, regardless of its name: all formats of the codec
/// table that have a decoder. This is the imaging codec. RGB becomes 24bppBGR; a file whose own
/// pixel format has no WICPixelFormat becomes 32bppBGRA.
///
/// With Isolation::process a worker process decodes a copy of the bytes.
///
/// Throws FormatError("Invalid image") for unknown bytes, else FormatError, UnsupportedError or
/// LimitError with the text of the codec.
RASTERKIT_EXPORT ImagingFrame DecodeFrame(TStream& stream, const FrameOptions& options = {},
                                          CodecReport* report = nullptr);

/// Decodes a file. With Isolation::process a worker process reads the open file itself, without a
/// copy. Throws as above, FileError if the file cannot be opened; every error names the file.
RASTERKIT_EXPORT ImagingFrame DecodeFrame(const std::string& fileName,
                                          const FrameOptions& options = {},
                                          CodecReport* report = nullptr);

/// Converts a frame to a visible picture: gray gets a ramp; grids of 16 bits or floats become 8-bit
/// gray (unsigned words by their range, others between their least and greatest value).
RASTERKIT_EXPORT Raster PictureOfFrame(ImagingFrame frame, CodecReport* report = nullptr);

}  // namespace rasterkit
